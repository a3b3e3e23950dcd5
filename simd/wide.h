#pragma once

// The bytes of a vector in lanes of 16 bits, for sums that need more on the way. Which byte stands
// in which lane, only the functions here know: each target has an order that costs it least.

#include "simd/vec.h"

namespace zavri {
namespace {

struct Wide {
  V16 part[2];
};

// Declared in every body:
//   widen(V8)
//   narrow(Wide)  back to bytes, all below 256
//   add_products(Wide sums, V8 a, int weight_a, V8 b, int weight_b)  weights 0..127
//   weighted_difference(V8 a, V8 b, V8 weights)  weights * (b - a), signed; weights 0..127
#ifdef ZAVRI_X86

// a[i], b[i] in the lane of byte i.
ZAVRI_INLINE Wide pairs(V8 a, V8 b) {
  return {{(V16)ZAVRI_MM(unpacklo_epi8, (Native)a, (Native)b),
           (V16)ZAVRI_MM(unpackhi_epi8, (Native)a, (Native)b)}};
}

// In each lane the sum of both bytes, each times its weight.
ZAVRI_INLINE V16 weigh(V16 unsigned_pairs, V16 signed_weights) {
  return (V16)ZAVRI_MM(maddubs_epi16, (Native)unsigned_pairs, (Native)signed_weights);
}

ZAVRI_INLINE Wide widen(V8 v) { return pairs(v, V8{}); }

ZAVRI_INLINE V8 narrow(Wide v) {
  return (V8)ZAVRI_MM(packus_epi16, (Native)v.part[0], (Native)v.part[1]);
}

ZAVRI_INLINE Wide add_products(Wide sums, V8 a, int weight_a, V8 b, int weight_b) {
  const V16 weights = splat16(static_cast<unsigned>(weight_a | weight_b << 8));
  const Wide samples = pairs(a, b);
  return {{sums.part[0] + weigh(samples.part[0], weights),
           sums.part[1] + weigh(samples.part[1], weights)}};
}

ZAVRI_INLINE Wide weighted_difference(V8 a, V8 b, V8 weights) {
  const Wide samples = pairs(a, b);
  const Wide both = pairs(-weights, weights);
  return {{weigh(samples.part[0], both.part[0]), weigh(samples.part[1], both.part[1])}};
}

#elif defined(ZAVRI_NEON)

ZAVRI_INLINE Wide widen(V8 v) {
  const auto bytes = (uint8x16_t)v;
  return {{(V16)vmovl_u8(vget_low_u8(bytes)), (V16)vmovl_u8(vget_high_u8(bytes))}};
}

ZAVRI_INLINE V8 narrow(Wide v) {
  return (V8)vcombine_u8(vmovn_u16((uint16x8_t)v.part[0]), vmovn_u16((uint16x8_t)v.part[1]));
}

ZAVRI_INLINE Wide add_products(Wide sums, V8 a, int weight_a, V8 b, int weight_b) {
  const auto add = [&sums](V8 samples, int weight) {
    const auto bytes = (uint8x16_t)samples;
    const uint8x8_t weights = vdup_n_u8(static_cast<uint8_t>(weight));
    sums.part[0] = (V16)vmlal_u8((uint16x8_t)sums.part[0], vget_low_u8(bytes), weights);
    sums.part[1] = (V16)vmlal_u8((uint16x8_t)sums.part[1], vget_high_u8(bytes), weights);
  };
  add(a, weight_a);
  add(b, weight_b);
  return sums;
}

ZAVRI_INLINE Wide weighted_difference(V8 a, V8 b, V8 weights) {
  const auto from = (uint8x16_t)a;
  const auto to = (uint8x16_t)b;
  const Wide weight = widen(weights);
  return {{(V16)vsubl_u8(vget_low_u8(to), vget_low_u8(from)) * weight.part[0],
           (V16)vsubl_u8(vget_high_u8(to), vget_high_u8(from)) * weight.part[1]}};
}

#else

ZAVRI_INLINE Wide widen(V8 v) { return {{(V16)v & 0xff, (V16)v >> 8}}; }

ZAVRI_INLINE V8 narrow(Wide v) { return (V8)(v.part[0] | v.part[1] << 8); }

ZAVRI_INLINE Wide add_products(Wide sums, V8 a, int weight_a, V8 b, int weight_b) {
  const Wide left = widen(a);
  const Wide right = widen(b);
  const V16 weights[] = {splat16(static_cast<unsigned>(weight_a)),
                         splat16(static_cast<unsigned>(weight_b))};
  return {{sums.part[0] + left.part[0] * weights[0] + right.part[0] * weights[1],
           sums.part[1] + left.part[1] * weights[0] + right.part[1] * weights[1]}};
}

ZAVRI_INLINE Wide weighted_difference(V8 a, V8 b, V8 weights) {
  const Wide from = widen(a);
  const Wide to = widen(b);
  const Wide weight = widen(weights);
  return {
      {weight.part[0] * (to.part[0] - from.part[0]), weight.part[1] * (to.part[1] - from.part[1])}};
}

#endif

}  // namespace
}  // namespace zavri
