#include "platform/host/scale_double.h"

#include <algorithm>

#include "platform/host/lanes.h"

namespace zavri::host {
namespace {

// The general rule weighs by 3/4 and 1/4 each way: in units of 1/16 the sample A is
// 9a + 3b + 3c + d, with a half for rounding. That is 8 * (a + 1) and what diagonal_means() divides
// by 8, and dividing by 8 first changes nothing, because the rest is below 8. For a = 10, b = 20,
// c = 30 and d = 40 both forms give 18:
//
//     A = (9a + 3b + 3c + d + 8) >> 4 = (a + ((a + 3b + 3c + d) >> 3) + 1) >> 1
ZAVRI_INLINE void double_linear(const uint8_t* above, const uint8_t* below, size_t i,
                                uint8_t* upper, uint8_t* lower) {
  const U8 a = load(above + i);
  const U8 b = load(above + i + 1);
  const U8 c = load(below + i);
  const U8 d = load(below + i + 1);
  const Diagonals means = diagonal_means(a, b, c, d);
  store_interleaved(upper + 2 * i + 1, avg_round_up(a, means.bc), avg_round_up(b, means.ad));
  store_interleaved(lower + 2 * i + 1, avg_round_up(c, means.ad), avg_round_up(d, means.bc));
}

// Makes a sample at an end of a row. There a = b and c = d, because one sample stands for both
// columns, and the weights of the rows remain.
uint8_t linear_end(uint8_t near, uint8_t far) {
  return static_cast<uint8_t>((3 * near + far + 2) >> 2);
}

void linear(const uint8_t* above, const uint8_t* below, size_t count, uint8_t* upper,
            uint8_t* lower) {
  const size_t last = count - 1;
  for_vectors(0, last, [=](size_t i) { double_linear(above, below, i, upper, lower); });
  upper[0] = linear_end(above[0], below[0]);
  lower[0] = linear_end(below[0], above[0]);
  upper[2 * count - 1] = linear_end(above[last], below[last]);
  lower[2 * count - 1] = linear_end(below[last], above[last]);
}

// The general rule rounds its products to 1/128 of a level. With kQuarterWeights they need no
// rounding, so that rows and columns may change places: here the rows are summed first, less the
// offset of all samples.
constexpr int kShift = 14;
constexpr int kSampleOffset = 128;

ZAVRI_INLINE void sum_rows(const uint8_t* const* rows, size_t i, int16_t* sums) {
  const Wide wide =
      quarter_sums(load(rows[0] + i), load(rows[1] + i), load(rows[2] + i), load(rows[3] + i));
  auto* const to = reinterpret_cast<uint8_t*>(sums + i);
  store_blocks(to, 2 * kBlockBytes, (U8)wide.lower);
  store_blocks(to + kBlockBytes, 2 * kBlockBytes, (U8)wide.upper);
}

// Makes the samples on both quarters of the way from sums[i] to its right neighbour.
ZAVRI_INLINE void double_spline(const FourWeights& weights, const int16_t* sums, size_t i,
                                uint8_t* to) {
  Sums left[2];
  Sums right[2];
  for (size_t half = 0; half < 2; ++half) {
    const int16_t* const from = sums + i + half * kLanesOf<S16>;
    const S16 p = load<S16>(from - 1);
    const S16 q = load<S16>(from);
    const S16 r = load<S16>(from + 1);
    const S16 s = load<S16>(from + 2);
    left[half] = weights.sum(p, q, r, s);
    right[half] = weights.sum(s, r, q, p);
  }
  store_interleaved(to + 2 * i + 1, narrow_rounded<kShift>(left[0], left[1]),
                    narrow_rounded<kShift>(right[0], right[1]));
}

uint8_t spline_end(int outer, int near, int far, int outer_far) {
  const int16_t* const w = kQuarterWeights;
  const int sum = w[0] * outer + w[1] * near + w[2] * far + w[3] * outer_far;
  const int value = ((sum + (1 << (kShift - 1))) >> kShift) + kSampleOffset;
  return static_cast<uint8_t>(std::clamp(value, 0, 255));
}

void spline(const uint8_t* const* rows_in, size_t count, int16_t* sums, uint8_t* to) {
  const uint8_t* const rows[] = {rows_in[0], rows_in[1], rows_in[2], rows_in[3]};
  for_vectors(0, count, [&](size_t i) { sum_rows(rows, i, sums); });
  const int16_t first = sums[0];
  const int16_t last = sums[count - 1];
  const FourWeights weights(kQuarterWeights);
  sums[-1] = first;
  sums[count] = last;
  for_vectors(0, count - 1, [=](size_t i) { double_spline(weights, sums, i, to); });
  to[0] = spline_end(sums[1], first, first, first);
  to[2 * count - 1] = spline_end(sums[count - 2], last, last, last);
}

}  // namespace

const DoubleKernels& double_kernels(ThisBuild) {
  static constexpr DoubleKernels kKernels = {kVectorized ? kVectorBytes + 1 : SIZE_MAX, linear,
                                             spline};
  return kKernels;
}

}  // namespace zavri::host
