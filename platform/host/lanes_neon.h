#pragma once

// The operations of platform/host/lanes.h, which includes this file, for NEON.

namespace zavri::host {
namespace {

ZAVRI_INLINE U8 load_windows(const uint8_t* from, const uint32_t* offsets) {
  return load(from + offsets[0]);
}

ZAVRI_INLINE U8 lookup_in_blocks(U8 v, U8 i) {
  const auto table = (uint8x16_t)v;
  const auto index = (uint8x16_t)i;
#ifdef __aarch64__
  return (U8)vqtbl1q_u8(table, index);
#else
  const uint8x8x2_t halves = {{vget_low_u8(table), vget_high_u8(table)}};
  return (U8)vcombine_u8(vtbl2_u8(halves, vget_low_u8(index)),
                         vtbl2_u8(halves, vget_high_u8(index)));
#endif
}

ZAVRI_INLINE Wide add_samples(Wide sums, U8 a, int weight_a, U8 b, int weight_b) {
  const auto add = [&sums](U8 samples, int weight) {
    const auto bytes = (uint8x16_t)samples;
    const uint8x8_t weights = vdup_n_u8(static_cast<uint8_t>(weight));
    sums.lower = (U16)vmlal_u8((uint16x8_t)sums.lower, vget_low_u8(bytes), weights);
    sums.upper = (U16)vmlal_u8((uint16x8_t)sums.upper, vget_high_u8(bytes), weights);
  };
  add(a, weight_a);
  add(b, weight_b);
  return sums;
}

ZAVRI_INLINE Sums add_products(Sums sums, S16 a, int16_t weight_a, S16 b, int16_t weight_b) {
  const auto add = [&sums](S16 lanes, int16_t weight) {
    const auto samples = (int16x8_t)lanes;
    sums.lower = (S32)vmlal_n_s16((int32x4_t)sums.lower, vget_low_s16(samples), weight);
    sums.upper = (S32)vmlal_n_s16((int32x4_t)sums.upper, vget_high_s16(samples), weight);
  };
  add(a, weight_a);
  add(b, weight_b);
  return sums;
}

template <int kBits>
ZAVRI_INLINE U8 narrow_saturated(Sums a, Sums b) {
  const auto pack = [](Sums sums) {
    return vqmovun_s16(vcombine_s16(vmovn_s32((int32x4_t)(sums.lower >> kBits)),
                                    vmovn_s32((int32x4_t)(sums.upper >> kBits))));
  };
  return (U8)vcombine_u8(pack(a), pack(b));
}

}  // namespace
}  // namespace zavri::host
