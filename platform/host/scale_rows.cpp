#include "platform/host/scale_rows.h"

#include "platform/host/lanes.h"

namespace zavri::host {
namespace {

// Sums are made of samples less 128, so that they fit 16 bits: linear ones then lie in
// [-32768, 32512], and a spline's within 21000, because its two inner taps weigh up to 9/8 together
// and the outer two -1/8.
constexpr int kSampleOffset = 128;

// A spline's products along are shifted by this, which leaves units of 1/128 of a level.
constexpr int kProductShift = 7;

// The result is shifted by the bits of a weight along and of one across, less kProductShift.
constexpr int shift_of(Scheme scheme) {
  return scheme == Scheme::kLinear ? 16 : scheme == Scheme::kLinearShort ? 8 : 14 + kProductShift;
}

// Returns what is added to the products of sums: the offset's share, and a half for rounding.
constexpr int completion(Scheme scheme) {
  return (kSampleOffset << shift_of(scheme)) + (1 << (shift_of(scheme) - 1));
}

uint8_t saturated(int value) {
  return static_cast<uint8_t>(value < 0 ? 0 : value > 255 ? 255 : value);
}

template <int kShift>
int rounded(int value) {
  return (value + (1 << (kShift - 1))) >> kShift;
}

template <Scheme kScheme>
void filter_plain(const RowPlan& plan, size_t from, const uint8_t* source, int16_t* sums) {
  for (size_t x = from; x < plan.count; ++x) {
    int sum = 0;
    for (size_t j = 0; j < taps_of(kScheme) && plan.first[x] + j < plan.source_count; ++j) {
      const int product = plan.weights[j][x] * (source[plan.first[x] + j] - kSampleOffset);
      sum += kScheme == Scheme::kSpline ? rounded<kProductShift>(product) : product;
    }
    sums[x] = static_cast<int16_t>(sum);
  }
}

constexpr size_t kLanes = kVectorBytes / 2;

ZAVRI_INLINE S16 linear_sums(const RowPlan& plan, size_t x, U8 window) {
  const U8 samples = shuffle_blocks(window, load(plan.pairs + x));
  return multiply_add_pairs(load(plan.pair_weights + x), (S8)(samples ^ kSampleOffset));
}

// A sample less kSampleOffset stands in the upper half of a lane, which makes it 256 times as
// large: mul_high_rounded, with its shift by 15, then shifts the product by kProductShift.
ZAVRI_INLINE S16 spline_sums(const RowPlan& plan, size_t x, U8 window) {
  static_assert(kProductShift == 15 - 8);
  const U8 pairs = load(plan.pairs + x);
  S16 sum{};
  for (int j = 0; j < 4; j += 2) {
    const U8 places = pairs + static_cast<uint8_t>(j);
    const U16 samples = (U16)(shuffle_blocks(window, places) ^ kSampleOffset);
    const S16 first = (S16)(samples << 8);
    const S16 second = (S16)(samples & 0xff00);
    sum += mul_high_rounded(first, load<S16>(plan.weights[j] + x));
    sum += mul_high_rounded(second, load<S16>(plan.weights[j + 1] + x));
  }
  return sum;
}

template <Scheme kScheme>
void filter(const RowPlan& plan_in, const uint8_t* source, int16_t* sums) {
  const RowPlan plan = plan_in;  // no store can alias this copy
  size_t x = 0;
  if (kVectorized && plan.windows != nullptr) {
    for (; x + kLanes <= plan.count; x += kLanes) {
      const U8 window = load_windows(source, plan.windows + x / kWindowOutputs);
      store(sums + x, kScheme == Scheme::kSpline ? spline_sums(plan, x, window)
                                                 : linear_sums(plan, x, window));
    }
  }
  filter_plain<kScheme>(plan, x, source, sums);
}

template <Scheme kScheme>
void mix_plain(const int16_t* const* rows, const int16_t* weights, size_t from, size_t count,
               uint8_t* to) {
  for (size_t x = from; x < count; ++x) {
    int sum = completion(kScheme);
    for (int j = 0; j < taps_of(kScheme); ++j) sum += weights[j] * rows[j][x];
    to[x] = saturated(sum >> shift_of(kScheme));
  }
}

template <Scheme kScheme>
ZAVRI_INLINE Sums mixed(const int16_t* const* rows, const int16_t* weights, size_t x) {
  Sums sum = splat_sums(completion(kScheme));
  for (int j = 0; j < taps_of(kScheme); j += 2) {
    sum = add_weighted_words(sum, load<S16>(rows[j] + x), weights[j], load<S16>(rows[j + 1] + x),
                             weights[j + 1]);
  }
  return sum;
}

ZAVRI_INLINE U16 mixed_short(const int16_t* const* rows, const int16_t* weights, size_t x) {
  const U16 sum = load<U16>(rows[0] + x) * static_cast<uint16_t>(weights[0]) +
                  load<U16>(rows[1] + x) * static_cast<uint16_t>(weights[1]);
  return (sum + completion(Scheme::kLinearShort)) >> shift_of(Scheme::kLinearShort);
}

template <Scheme kScheme>
ZAVRI_INLINE U8 mix_vector(const int16_t* const* rows, const int16_t* weights, size_t x) {
  if constexpr (kScheme == Scheme::kLinearShort) {
    return narrow(mixed_short(rows, weights, x), mixed_short(rows, weights, x + kLanes));
  } else {
    return narrow_saturated<shift_of(kScheme)>(mixed<kScheme>(rows, weights, x),
                                               mixed<kScheme>(rows, weights, x + kLanes));
  }
}

template <Scheme kScheme>
void mix(const int16_t* const* rows_in, const int16_t* weights_in, size_t count, uint8_t* to) {
  const int16_t* rows[taps_of(kScheme)];  // no store can alias these copies
  int16_t weights[taps_of(kScheme)];
  for (int j = 0; j < taps_of(kScheme); ++j) {
    rows[j] = rows_in[j];
    weights[j] = weights_in[j];
  }
  size_t x = 0;
  if (kVectorized) {
    for (; x + kVectorBytes <= count; x += kVectorBytes) {
      store(to + x, mix_vector<kScheme>(rows, weights, x));
    }
  }
  mix_plain<kScheme>(rows, weights, x, count, to);
}

}  // namespace

const ScaleRowKernels& scale_row_kernels(ThisBuild) {
  static constexpr ScaleRowKernels kKernels = {{
      {filter<Scheme::kLinear>, mix<Scheme::kLinear>},
      {filter<Scheme::kLinearShort>, mix<Scheme::kLinearShort>},
      {filter<Scheme::kSpline>, mix<Scheme::kSpline>},
  }};
  return kKernels;
}

}  // namespace zavri::host
