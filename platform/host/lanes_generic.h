#pragma once

// This file, which platform/host/lanes.h includes, has its operations without intrinsics.

namespace zavri::host {
namespace {

ZAVRI_INLINE U8 load_windows(const uint8_t* from, const uint32_t* offsets) {
  static_assert(kBlocks == 1);
  return load(from + offsets[0]);
}

ZAVRI_INLINE U8 shuffle_blocks(U8 v, U8 i) {
  static_assert(kBlocks == 1);
  U8 found{};
  for (size_t k = 0; k < kVectorBytes; ++k) found[k] = v[i[k]];
  return found;
}

ZAVRI_INLINE Wide add_weighted_bytes(Wide sums, U8 a, int weight_a, U8 b, int weight_b) {
  const Wide wide_a = widen(a);
  const Wide wide_b = widen(b);
  const auto a16 = static_cast<uint16_t>(weight_a);
  const auto b16 = static_cast<uint16_t>(weight_b);
  return {sums.lower + wide_a.lower * a16 + wide_b.lower * b16,
          sums.upper + wide_a.upper * a16 + wide_b.upper * b16};
}

ZAVRI_INLINE Wide quarter_sums(U8 p, U8 q, U8 r, U8 s) {
  const Wide add = add_weighted_bytes(Wide{}, q, kQuarterWeights[1], r, kQuarterWeights[2]);
  const Wide subtract = add_weighted_bytes(Wide{}, p, -kQuarterWeights[0], s, -kQuarterWeights[3]);
  return {add.lower - subtract.lower - 128 * 128, add.upper - subtract.upper - 128 * 128};
}

ZAVRI_INLINE Sums add_weighted_words(Sums sums, S16 a, int16_t weight_a, S16 b, int16_t weight_b) {
  const auto lower = [](S16 v) { return (S32)interleave_lower(S16{}, v) >> 16; };
  const auto upper = [](S16 v) { return (S32)interleave_upper(S16{}, v) >> 16; };
  return {sums.lower + lower(a) * weight_a + lower(b) * weight_b,
          sums.upper + upper(a) * weight_a + upper(b) * weight_b};
}

template <int kBits>
ZAVRI_INLINE U8 narrow_saturated(Sums a, Sums b) {
  const auto clamped = [](S32 sum) {
    const S32 shifted = sum >> kBits;
    const S32 positive = shifted & ~(shifted >> 31);
    return (U16)(positive > 255 ? splat<S32>(255) : positive);
  };
  const auto pack = [&](Sums sums) {
    return generic::deinterleave(clamped(sums.lower), clamped(sums.upper),
                                 std::make_index_sequence<kLanesOf<U16>>())
        .even;
  };
  return narrow(pack(a), pack(b));
}

}  // namespace
}  // namespace zavri::host
