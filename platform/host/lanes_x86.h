#pragma once

// This file, which platform/host/lanes.h includes, has its operations for SSE4.2 and AVX2.

namespace zavri::host {
namespace {

ZAVRI_INLINE U8 load_windows(const uint8_t* from, const uint32_t* offsets) {
#if ZAVRI_VECTOR_BYTES == 32
  const auto* const first = reinterpret_cast<const __m128i*>(from + offsets[0]);
  const auto* const second = reinterpret_cast<const __m128i*>(from + offsets[1]);
  return (U8)_mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadu_si128(first)),
                                     _mm_loadu_si128(second), 1);
#else
  return load(from + offsets[0]);
#endif
}

ZAVRI_INLINE U8 shuffle_blocks(U8 v, U8 i) {
  return (U8)ZAVRI_MM(shuffle_epi8, (Native)v, (Native)i);
}

ZAVRI_INLINE Wide add_weighted_bytes(Wide sums, U8 a, int weight_a, U8 b, int weight_b) {
  const S8 weights = (S8)splat<U16>(static_cast<uint16_t>(weight_a | weight_b << 8));
  return {sums.lower + (U16)multiply_add_pairs(interleave_lower(a, b), weights),
          sums.upper + (U16)multiply_add_pairs(interleave_upper(a, b), weights)};
}

ZAVRI_INLINE Wide quarter_sums(U8 p, U8 q, U8 r, U8 s) {
  const auto offset = [](U8 samples) { return (S8)(samples ^ 128); };
  const auto weights = [](int low, int high) {
    return (U8)splat<U16>(static_cast<uint16_t>(low | high << 8));
  };
  const S8 qr[] = {(S8)interleave_lower(offset(q), offset(r)),
                   (S8)interleave_upper(offset(q), offset(r))};
  const S8 ps[] = {(S8)interleave_lower(offset(p), offset(s)),
                   (S8)interleave_upper(offset(p), offset(s))};
  const auto sum = [&](int half) {
    return (U16)(multiply_add_pairs(weights(kQuarterWeights[1], kQuarterWeights[2]), qr[half]) -
                 multiply_add_pairs(weights(-kQuarterWeights[0], -kQuarterWeights[3]), ps[half]));
  };
  return {sum(0), sum(1)};
}

ZAVRI_INLINE Sums add_weighted_words(Sums sums, S16 a, int16_t weight_a, S16 b, int16_t weight_b) {
  const S32 weights = splat<S32>((weight_a & 0xffff) | weight_b * 0x10000);
  const auto products = [weights](S16 pairs) {
    return (S32)ZAVRI_MM(madd_epi16, (Native)pairs, (Native)weights);
  };
  return {sums.lower + products(interleave_lower(a, b)),
          sums.upper + products(interleave_upper(a, b))};
}

template <int kBits>
ZAVRI_INLINE U8 narrow_saturated(Sums a, Sums b) {
  const auto pack = [](Sums sums) {
    return (U16)ZAVRI_MM(packs_epi32, (Native)(sums.lower >> kBits), (Native)(sums.upper >> kBits));
  };
  return narrow(pack(a), pack(b));
}

}  // namespace
}  // namespace zavri::host
