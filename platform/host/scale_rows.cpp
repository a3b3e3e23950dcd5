#include "platform/host/scale_rows.h"

#ifndef ZAVRI_BUILD_PLAIN
#include "simd/vec.h"
#endif

namespace zavri {
namespace {

// Sums are made of samples less 128, so that they fit 16 bits: linear ones then lie in
// [-32768, 32512], and a spline's, of which some taps weigh 9/8 and the others -1/8, within 21000.
constexpr int kSampleOffset = 128;

// Of a spline's products along, which leaves 1/128 of a level.
constexpr int kProductShift = 7;

// Of the result: by the bits of all weights along and across, less those that products lost.
constexpr int shift_of(Scheme scheme) {
  return scheme == Scheme::kLinear ? 16 : scheme == Scheme::kLinearShort ? 8 : 14 + kProductShift;
}

// What completes the products of sums: the offset's share, and a half for rounding.
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

template <Scheme kScheme>
void mix_plain(const int16_t* const* rows, const int16_t* weights, size_t from, size_t count,
               uint8_t* to) {
  for (size_t x = from; x < count; ++x) {
    int sum = completion(kScheme);
    for (int j = 0; j < taps_of(kScheme); ++j) sum += weights[j] * rows[j][x];
    to[x] = saturated(sum >> shift_of(kScheme));
  }
}

#ifdef ZAVRI_BUILD_PLAIN

template <Scheme kScheme>
void filter(const RowPlan& plan, const uint8_t* source, int16_t* sums) {
  filter_plain<kScheme>(plan, 0, source, sums);
}

template <Scheme kScheme>
void mix(const int16_t* const* rows, const int16_t* weights, size_t count, uint8_t* to) {
  mix_plain<kScheme>(rows, weights, 0, count, to);
}

#else

constexpr size_t kLanes = kVectorBytes / 2;

ZAVRI_INLINE S16 linear_sums(const RowPlan& plan, size_t x, V8 window) {
  const V8 samples = lookup16(window, (V8)load16(plan.pairs + x));
  return weigh_pairs(samples, (V8)load16(plan.pair_weights + x));
}

ZAVRI_INLINE S16 spline_sums(const RowPlan& plan, size_t x, V8 window) {
  const V8 pairs = (V8)load16(plan.pairs + x);
  S16 sum{};
  for (int j = 0; j < 4; j += 2) {
    // Samples less kSampleOffset in the upper halves of lanes, that is times 256: the high
    // products, less 16 bits and plus one for the doubling, are those of the rule.
    const V16 samples = (V16)(lookup16(window, pairs + static_cast<uint8_t>(j)) ^ 0x80);
    const S16 first = (S16)(samples << 8);
    const S16 second = (S16)(samples & 0xff00);
    sum += multiply_high(first, (S16)load16(plan.weights[j] + x));
    sum += multiply_high(second, (S16)load16(plan.weights[j + 1] + x));
  }
  return sum;
}

template <Scheme kScheme>
void filter(const RowPlan& plan_in, const uint8_t* source, int16_t* sums) {
  const RowPlan plan = plan_in;  // a copy that no store can alias
  size_t x = 0;
  if (plan.windows != nullptr) {
    for (; x + kLanes <= plan.count; x += kLanes) {
      const V8 window = load_each_16(source, plan.windows + x / kWindowOutputs);
      store16(sums + x, (V16)(kScheme == Scheme::kSpline ? spline_sums(plan, x, window)
                                                         : linear_sums(plan, x, window)));
    }
  }
  filter_plain<kScheme>(plan, x, source, sums);
}

template <Scheme kScheme>
ZAVRI_INLINE Sums mixed(const int16_t* const* rows, const int16_t* weights, size_t x) {
  Sums sum = splat_sums(completion(kScheme));
  for (int j = 0; j < taps_of(kScheme); j += 2) {
    sum = add_products(sum, (S16)load16(rows[j] + x), weights[j], (S16)load16(rows[j + 1] + x),
                       weights[j + 1]);
  }
  return shift_right<shift_of(kScheme)>(sum);
}

ZAVRI_INLINE V16 mixed_short(const int16_t* const* rows, const int16_t* weights, size_t x) {
  const V16 sum = load16(rows[0] + x) * splat16(static_cast<uint16_t>(weights[0])) +
                  load16(rows[1] + x) * splat16(static_cast<uint16_t>(weights[1]));
  return (sum + completion(Scheme::kLinearShort)) >> shift_of(Scheme::kLinearShort);
}

template <Scheme kScheme>
void mix(const int16_t* const* rows_in, const int16_t* weights_in, size_t count, uint8_t* to) {
  const int16_t* rows[taps_of(kScheme)];  // copies that no store can alias
  int16_t weights[taps_of(kScheme)];
  for (int j = 0; j < taps_of(kScheme); ++j) {
    rows[j] = rows_in[j];
    weights[j] = weights_in[j];
  }
  size_t x = 0;
  for (; x + kVectorBytes <= count; x += kVectorBytes) {
    if constexpr (kScheme == Scheme::kLinearShort) {
      store(to + x,
            bytes_of(mixed_short(rows, weights, x), mixed_short(rows, weights, x + kLanes)));
    } else {
      store(to + x,
            bytes_of(mixed<kScheme>(rows, weights, x), mixed<kScheme>(rows, weights, x + kLanes)));
    }
  }
  mix_plain<kScheme>(rows, weights, x, count, to);
}

#endif

}  // namespace

const ScaleRowKernels& scale_row_kernels(ThisBuild) {
  static constexpr ScaleRowKernels kKernels = {{
      {filter<Scheme::kLinear>, mix<Scheme::kLinear>},
      {filter<Scheme::kLinearShort>, mix<Scheme::kLinearShort>},
      {filter<Scheme::kSpline>, mix<Scheme::kSpline>},
  }};
  return kKernels;
}

}  // namespace zavri
