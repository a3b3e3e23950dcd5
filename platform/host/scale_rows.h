#pragma once

#include <cstddef>
#include <cstdint>

#include "simd/builds.h"

namespace zavri::host {

// These are the row kernels of the portable scaler. A row of source samples is first filtered along
// the row into 16-bit sums, several such rows are then mixed into a row of the result:
//
//     source rows        sums          result
//     . . . . . .   ->   o o o o   -+
//                                   +->  # # # #
//     . . . . . .   ->   o o o o   -+
//
enum class Scheme {
  // There are two taps each way, with weights in units of 1/256. Only the result is rounded, by
  // (v + 2^15) >> 16.
  kLinear,
  // There are two taps each way, and a weight along times one across is a multiple of 1/256. In
  // these units everything fits 16 bits, and (v + 2^7) >> 8 rounds the result.
  kLinearShort,
  // There are four taps each way, with weights in units of 1/2^14. Products along are rounded to
  // 1/128, the result is rounded by (v + 2^20) >> 21 and saturated.
  kSpline,
};

constexpr int taps_of(Scheme scheme) { return scheme == Scheme::kSpline ? 4 : 2; }

// A vector kernel reads kWindow source bytes at once and makes kWindowOutputs sums of them.
inline constexpr size_t kWindow = 16;
inline constexpr size_t kWindowOutputs = 8;

// Sample x of a scaled row is the sum of source[first[x] + j] * weights[j][x] over the taps j.
struct RowPlan {
  size_t count;
  uint32_t source_count;  // a tap from here on weighs 0 and must not be read
  const uint32_t* first;
  const int16_t* weights[4];

  // `windows`, `pairs` and `pair_weights` say the same as lookups. They are null where there are
  // fewer than kWindow source samples or fewer results than source samples. The samples 8g to
  // 8g + 7 need only the kWindow bytes from source[windows[g]] on. In this window, the low and the
  // high byte of pairs[x] are the places of the first two taps of sample x; the other two taps of a
  // spline are two bytes further.
  const uint32_t* windows;
  const uint16_t* pairs;
  // The low and the high byte are the linear weights of the two taps in `pairs`. Where a weight is
  // 256, both bytes are 128 and both places the same.
  const uint16_t* pair_weights;
};

struct ScaleRowKernels {
  // Fills sums[0, count) from one source row. Their unit and offset are the kernels' own: they are
  // good for the Mix of the same scheme and build only.
  using Filter = void (*)(const RowPlan& plan, const uint8_t* source, int16_t* sums);

  // Fills to[0, count) from as many rows of sums as there are taps.
  using Mix = void (*)(const int16_t* const* rows, const int16_t* weights, size_t count,
                       uint8_t* to);

  struct Functions {
    Filter filter;
    Mix mix;
  };
  Functions functions[3];

  const Functions& get(Scheme scheme) const { return functions[static_cast<int>(scheme)]; }
};

const ScaleRowKernels& scale_row_kernels(PlainBuild);
const ScaleRowKernels& scale_row_kernels(Vector16Build);
const ScaleRowKernels& scale_row_kernels(Vector32Build);

inline const ScaleRowKernels& scale_row_kernels(Build build = best_build()) {
  return pick_build(build,
                    [](auto tag) -> const ScaleRowKernels& { return scale_row_kernels(tag); });
}

}  // namespace zavri::host
