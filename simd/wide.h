#pragma once

// The bytes of a vector in lanes of 16 bits, for sums that need more on the way. Which byte stands
// in which lane, only the functions here know: each target has an order that costs it least.

#include "simd/vec.h"

namespace zavri {
namespace {

struct Widened {
  V16 part[2];
};

// Declared in every body:
//   widen(V8)
//   narrow(Widened)  back to bytes, all below 256
//   add_products(Widened sums, V8 a, int weight_a, V8 b, int weight_b)  weights 0..127
#ifdef ZAVRI_X86

// a[i], b[i] in the lane of byte i.
ZAVRI_INLINE Widened pairs(V8 a, V8 b) {
  return {{(V16)ZAVRI_MM(unpacklo_epi8, (Native)a, (Native)b),
           (V16)ZAVRI_MM(unpackhi_epi8, (Native)a, (Native)b)}};
}

// In each lane the sum of both bytes, each times its weight.
ZAVRI_INLINE V16 weigh(V16 unsigned_pairs, V16 signed_weights) {
  return (V16)ZAVRI_MM(maddubs_epi16, (Native)unsigned_pairs, (Native)signed_weights);
}

ZAVRI_INLINE Widened widen(V8 v) { return pairs(v, V8{}); }

ZAVRI_INLINE V8 narrow(Widened v) {
  return (V8)ZAVRI_MM(packus_epi16, (Native)v.part[0], (Native)v.part[1]);
}

ZAVRI_INLINE Widened add_products(Widened sums, V8 a, int weight_a, V8 b, int weight_b) {
  const V16 weights = splat16(static_cast<unsigned>(weight_a | weight_b << 8));
  const Widened samples = pairs(a, b);
  return {{sums.part[0] + weigh(samples.part[0], weights),
           sums.part[1] + weigh(samples.part[1], weights)}};
}

#elif defined(ZAVRI_NEON)

ZAVRI_INLINE Widened widen(V8 v) {
  const auto bytes = (uint8x16_t)v;
  return {{(V16)vmovl_u8(vget_low_u8(bytes)), (V16)vmovl_u8(vget_high_u8(bytes))}};
}

ZAVRI_INLINE V8 narrow(Widened v) {
  return (V8)vcombine_u8(vmovn_u16((uint16x8_t)v.part[0]), vmovn_u16((uint16x8_t)v.part[1]));
}

ZAVRI_INLINE Widened add_products(Widened sums, V8 a, int weight_a, V8 b, int weight_b) {
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

#else

ZAVRI_INLINE Widened widen(V8 v) { return {{(V16)v & 0xff, (V16)v >> 8}}; }

ZAVRI_INLINE V8 narrow(Widened v) { return (V8)(v.part[0] | v.part[1] << 8); }

ZAVRI_INLINE Widened add_products(Widened sums, V8 a, int weight_a, V8 b, int weight_b) {
  const Widened left = widen(a);
  const Widened right = widen(b);
  const V16 weights[] = {splat16(static_cast<unsigned>(weight_a)),
                         splat16(static_cast<unsigned>(weight_b))};
  return {{sums.part[0] + left.part[0] * weights[0] + right.part[0] * weights[1],
           sums.part[1] + left.part[1] * weights[0] + right.part[1] * weights[1]}};
}

#endif

}  // namespace
}  // namespace zavri
