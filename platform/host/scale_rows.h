#pragma once

#include <cstddef>
#include <cstdint>

#include "simd/builds.h"

namespace zavri {

// Row kernels of the portable scaler. A row of source samples is first filtered along the row into
// 16-bit sums, several such rows are then mixed into a row of the result:
//
//     source rows        sums          result
//     . . . . . .   ->   o o o o   -+
//                                   +->  # # # #
//     . . . . . .   ->   o o o o   -+
//
enum class Scheme {
  // Bilinear, all weights of 1/256. Nothing is rounded but the result, by (v + 2^15) >> 16.
  kLinear,
  // The same where the weights along times those across are multiples of 1/256: in these units all
  // fits 16 bits, and (v + 2^7) >> 8 rounds.
  kLinearShort,
  // Four taps, all weights of 1/2^14. Products along are rounded to 1/128, the result by
  // (v + 2^20) >> 21, and saturated.
  kSpline,
};

constexpr int taps_of(Scheme scheme) { return scheme == Scheme::kSpline ? 4 : 2; }

// A number of 16 source bytes that a vector kernel reads at once, and the scaled samples that are
// made of them.
inline constexpr size_t kWindow = 16;
inline constexpr size_t kWindowOutputs = 8;

// How every sample of a scaled row is made: sample x from source[first[x] + j], weighted by
// weights[j][x].
struct RowPlan {
  size_t count;
  uint32_t source_count;  // a tap beyond the source weighs 0 and must not be read
  const uint32_t* first;
  const int16_t* weights[4];

  // For enlargements of kWindow source samples or more, else null: the same as lookups. Samples
  // 8g .. 8g + 7 need only the kWindow bytes from source[windows[g]] on; sample x has its first two
  // taps where the low and the high byte of pairs[x] tell, a spline the other two behind them.
  const uint32_t* windows;
  const uint16_t* pairs;
  // Two linear weights in the low and the high byte. Where one is 256 and the other 0 both bytes
  // are 128 and both taps the same.
  const uint16_t* pair_weights;
};

struct ScaleRowKernels {
  // sums[0, count) of one source row; only mix() can tell them.
  using Filter = void (*)(const RowPlan& plan, const uint8_t* source, int16_t* sums);

  // to[0, count) from as many rows of sums as there are taps.
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

}  // namespace zavri
