#pragma once

// This file, which platform/host/lanes.h includes, has its operations for NEON.

namespace zavri::host {
namespace {

ZAVRI_INLINE U8 load_windows(const uint8_t* from, const uint32_t* offsets) {
  return load(from + offsets[0]);
}

ZAVRI_INLINE U8 shuffle_blocks(U8 v, U8 i) {
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

ZAVRI_INLINE Wide binomial_sums(const uint8_t* from) {
  const uint8x16_t a = vld1q_u8(from - 2);
  const uint8x16_t e = vld1q_u8(from + 2);
  const uint8x16_t after_a = vextq_u8(e, e, 12);
  const uint8x16_t b = vextq_u8(a, after_a, 1);
  const uint8x16_t c = vextq_u8(a, after_a, 2);
  const uint8x16_t d = vextq_u8(a, after_a, 3);
  const auto sum = [&](auto half) {
    uint16x8_t sums = vaddl_u8(half(a), half(e));
    sums = vmlal_u8(sums, half(b), vdup_n_u8(4));
    sums = vmlal_u8(sums, half(c), vdup_n_u8(6));
    return (U16)vmlal_u8(sums, half(d), vdup_n_u8(4));
  };
  return {sum([](uint8x16_t v) { return vget_low_u8(v); }),
          sum([](uint8x16_t v) { return vget_high_u8(v); })};
}

ZAVRI_INLINE U8 narrow_high_rounded(Wide a, Wide b) {
  return (U8)vcombine_u8(vraddhn_u16((uint16x8_t)a.lower, (uint16x8_t)b.lower),
                         vraddhn_u16((uint16x8_t)a.upper, (uint16x8_t)b.upper));
}

// With ad for a + d and bc for b + c, (ad + 3 * bc) >> 3 is (((ad + bc) >> 1) + bc) >> 2, because
// the half that the first shift may drop is too small to reach the next multiple of 4. For ad = 5
// and bc = 4 both are 2.
ZAVRI_INLINE Diagonals diagonal_means(U8 a, U8 b, U8 c, U8 d) {
  struct Halves {
    uint8x8_t ad;
    uint8x8_t bc;
  };
  const auto means = [](uint8x8_t a8, uint8x8_t b8, uint8x8_t c8, uint8x8_t d8) {
    const uint16x8_t ad = vaddl_u8(a8, d8);
    const uint16x8_t bc = vaddl_u8(b8, c8);
    const uint16x8_t half = vhaddq_u16(ad, bc);
    return Halves{vshrn_n_u16(vaddq_u16(half, ad), 2), vshrn_n_u16(vaddq_u16(half, bc), 2)};
  };
  const auto low = [](U8 v) { return vget_low_u8((uint8x16_t)v); };
  const auto high = [](U8 v) { return vget_high_u8((uint8x16_t)v); };
  const Halves lower = means(low(a), low(b), low(c), low(d));
  const Halves upper = means(high(a), high(b), high(c), high(d));
  return {(U8)vcombine_u8(lower.ad, upper.ad), (U8)vcombine_u8(lower.bc, upper.bc)};
}

ZAVRI_INLINE Wide quarter_sums(U8 p, U8 q, U8 r, U8 s) {
  const auto weight = [](int value) { return vdup_n_u8(static_cast<uint8_t>(value)); };
  const auto sum = [weight](uint8x8_t p8, uint8x8_t q8, uint8x8_t r8, uint8x8_t s8) {
    const uint16x8_t with_q =
        vmlal_u8(vdupq_n_u16(0x10000 - 128 * 128), q8, weight(kQuarterWeights[1]));
    const uint16x8_t with_qr = vmlal_u8(with_q, r8, weight(kQuarterWeights[2]));
    return (U16)vmlsl_u8(vmlsl_u8(with_qr, p8, weight(-kQuarterWeights[0])), s8,
                         weight(-kQuarterWeights[3]));
  };
  const auto low = [](U8 v) { return vget_low_u8((uint8x16_t)v); };
  const auto high = [](U8 v) { return vget_high_u8((uint8x16_t)v); };
  return {sum(low(p), low(q), low(r), low(s)), sum(high(p), high(q), high(r), high(s))};
}

class FourWeights {
 public:
  ZAVRI_INLINE explicit FourWeights(const int16_t* weights) : of_(vld1_s16(weights)) {}

  ZAVRI_INLINE Sums sum(S16 a, S16 b, S16 c, S16 d) const {
    const auto sum_of = [&](auto half) {
      int32x4_t sums = vmull_lane_s16(half(a), of_, 0);
      sums = vmlal_lane_s16(sums, half(b), of_, 1);
      sums = vmlal_lane_s16(sums, half(c), of_, 2);
      return (S32)vmlal_lane_s16(sums, half(d), of_, 3);
    };
    return {sum_of([](S16 v) { return vget_low_s16((int16x8_t)v); }),
            sum_of([](S16 v) { return vget_high_s16((int16x8_t)v); })};
  }

 private:
  int16x4_t of_;
};

ZAVRI_INLINE Sums add_weighted_words(Sums sums, S16 a, int16_t weight_a, S16 b, int16_t weight_b) {
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

template <int kBits>
ZAVRI_INLINE U8 narrow_rounded(Sums a, Sums b) {
  const auto pack = [](Sums sums) {
    return vqmovn_s16(vcombine_s16(vrshrn_n_s32((int32x4_t)sums.lower, kBits),
                                   vrshrn_n_s32((int32x4_t)sums.upper, kBits)));
  };
  return (U8)vcombine_s8(pack(a), pack(b)) ^ 128;
}

}  // namespace
}  // namespace zavri::host
