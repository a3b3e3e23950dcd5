#pragma once

// This file, which simd/vec.h includes, has its operations for SSE4.2 and, in vectors of 32 bytes,
// for AVX2.

#include <immintrin.h>

namespace zavri {
namespace {

#if ZAVRI_VECTOR_BYTES == 32
#define ZAVRI_MM(operation, ...) _mm256_##operation(__VA_ARGS__)
typedef __m256i Native;
#else
#define ZAVRI_MM(operation, ...) _mm_##operation(__VA_ARGS__)
typedef __m128i Native;
#endif

using generic::duplicate_even;
using generic::fill_bytes;
using generic::kRoomForTwoStates;
using generic::load_deinterleaved;
using generic::load_next;
using generic::reciprocals;
using generic::small_quotient;
using generic::splat_first_pair;
using generic::store_interleaved;
using generic::store_next;
using generic::weighted_mean;
using generic::widen;

ZAVRI_INLINE U8 load_blocks(const uint8_t* from, [[maybe_unused]] ptrdiff_t distance) {
#if ZAVRI_VECTOR_BYTES == 32
  return (U8)_mm256_loadu2_m128i(reinterpret_cast<const __m128i*>(from + distance),
                                 reinterpret_cast<const __m128i*>(from));
#else
  return load(from);
#endif
}

ZAVRI_INLINE void store_blocks(uint8_t* to, [[maybe_unused]] ptrdiff_t distance, U8 v) {
#if ZAVRI_VECTOR_BYTES == 32
  _mm256_storeu2_m128i(reinterpret_cast<__m128i*>(to + distance), reinterpret_cast<__m128i*>(to),
                       (Native)v);
#else
  store(to, v);
#endif
}

ZAVRI_INLINE U8 avg_round_up(U8 a, U8 b) { return (U8)ZAVRI_MM(avg_epu8, (Native)a, (Native)b); }

ZAVRI_INLINE U8 avg_round_down(U8 a, U8 b) { return avg_round_up(a, b) - ((a ^ b) & 1); }

ZAVRI_INLINE U8 saturating_sub(U8 a, U8 b) { return (U8)ZAVRI_MM(subs_epu8, (Native)a, (Native)b); }

ZAVRI_INLINE S8 saturating_sub(S8 a, S8 b) { return (S8)ZAVRI_MM(subs_epi8, (Native)a, (Native)b); }

ZAVRI_INLINE U8 abs(S8 a) { return (U8)ZAVRI_MM(abs_epi8, (Native)a); }

ZAVRI_INLINE U8 abs_diff(U8 a, U8 b) { return saturating_sub(a, b) | saturating_sub(b, a); }

ZAVRI_INLINE U8 at_most(U8 a, U8 b) { return (U8)(saturating_sub(a, b) == 0); }

ZAVRI_INLINE U8 max(U8 a, U8 b) { return (U8)ZAVRI_MM(max_epu8, (Native)a, (Native)b); }

ZAVRI_INLINE U32 min(U32 a, U32 b) { return (U32)ZAVRI_MM(min_epu32, (Native)a, (Native)b); }

ZAVRI_INLINE U8 select(U8 mask, U8 a, U8 b) {
#if ZAVRI_VECTOR_BYTES == 16
  return (U8)_mm_blendv_epi8((Native)b, (Native)a, (Native)mask);
#else
  return generic::select(mask, a, b);  // the 32-byte blend is no faster
#endif
}

ZAVRI_INLINE U8 narrow(Wide wide) {
  return (U8)ZAVRI_MM(packus_epi16, (Native)wide.lower, (Native)wide.upper);
}

ZAVRI_INLINE S8 narrow_signed(Wide wide) {
  return (S8)ZAVRI_MM(packs_epi16, (Native)wide.lower, (Native)wide.upper);
}

ZAVRI_INLINE U8 narrow(U16 a, U16 b) {
  const U8 packed = narrow(Wide{a, b});
#if ZAVRI_VECTOR_BYTES == 32
  // Packing works block by block, which leaves the quarters as a, b, a, b.
  return (U8)_mm256_permute4x64_epi64((Native)packed, _MM_SHUFFLE(3, 1, 2, 0));
#else
  return packed;
#endif
}

ZAVRI_INLINE void split_cells(const U8* vectors, U8* even, U8* odd) {
  constexpr uint8_t kOrder[kBlockBytes] = {0, 4, 8, 12, 1, 5, 9, 13};
  const U8 order = load_blocks(kOrder, 0);
  U32 sorted[4];
  for (size_t i = 0; i < 4; ++i) {
    sorted[i] = (U32)ZAVRI_MM(shuffle_epi8, (Native)vectors[i], (Native)order);
  }
  const U64 a = (U64)interleave_lower(sorted[0], sorted[1]);
  const U64 b = (U64)interleave_lower(sorted[2], sorted[3]);
  *even = (U8)interleave_lower(a, b);
  *odd = (U8)interleave_upper(a, b);
}

ZAVRI_INLINE U16 mul_high(U16 a, U16 b) { return (U16)ZAVRI_MM(mulhi_epu16, (Native)a, (Native)b); }

ZAVRI_INLINE S16 mul_high_rounded(S16 a, S16 b) {
  return (S16)ZAVRI_MM(mulhrs_epi16, (Native)a, (Native)b);
}

template <size_t kEntries>
class ByteTable {
 public:
  ZAVRI_INLINE explicit ByteTable(const uint8_t* entries) {
    for (size_t i = 0; i < kParts; ++i) parts_[i] = load_blocks(entries + i * kPart, 0);
  }

  ZAVRI_INLINE U8 at(U8 index) const {
    U8 found{};
    for (size_t i = 0; i < kParts; ++i) {
      // A part's own indices become 0x70 .. 0x7f, of which the shuffle takes the low 4 bits; all
      // others get bit 7, for which it gives 0.
      const U8 local = index - static_cast<uint8_t>(i * kPart);
      const Native own = ZAVRI_MM(adds_epu8, (Native)local, (Native)splat<U8>(0x70));
      found |= (U8)ZAVRI_MM(shuffle_epi8, (Native)parts_[i], own);
    }
    return found;
  }

 private:
  static constexpr size_t kPart = 16;
  static constexpr size_t kParts = kEntries / kPart;
  U8 parts_[kParts];
};

ZAVRI_INLINE S16 multiply_add_pairs(U8 a, S8 b) {
  return (S16)ZAVRI_MM(maddubs_epi16, (Native)a, (Native)b);
}

ZAVRI_INLINE Wide add_products(Wide sums, U8 w1, S8 d1, U8 w2, S8 d2) {
  const auto products = [](U8 w, S8 d) { return (U16)multiply_add_pairs(w, d); };
  return {sums.lower + products(interleave_lower(w1, w2), interleave_lower(d1, d2)),
          sums.upper + products(interleave_upper(w1, w2), interleave_upper(d1, d2))};
}

ZAVRI_INLINE Wide add_weights(Wide sums, U8 a, U8 b) {
  const S8 one = splat<S8>(1);
  return add_products(sums, a, one, b, one);
}

// Returns the sum of each 8 bytes, below 2^11, in a 64-bit lane.
ZAVRI_INLINE U64 sum_bytes(U8 v) { return (U64)ZAVRI_MM(sad_epu8, (Native)v, (Native)U8{}); }

ZAVRI_INLINE uint64_t sum_lanes(U64 v) {
  uint64_t sum = 0;
  for (size_t i = 0; i < kLanesOf<U64>; ++i) sum += v[i];
  return sum;
}

class ByteSums {
 public:
  static constexpr size_t kMostAdds = SIZE_MAX;

  ZAVRI_INLINE void add(U8 v) { sums_ += sum_bytes(v); }

  ZAVRI_INLINE void add_abs_diff(U8 a, U8 b) {
    sums_ += (U64)ZAVRI_MM(sad_epu8, (Native)a, (Native)b);
  }

  ZAVRI_INLINE void add(const ByteSums& other) { sums_ += other.sums_; }

  ZAVRI_INLINE void settle() {}

  ZAVRI_INLINE uint32_t total() const { return static_cast<uint32_t>(sum_lanes(sums_)); }

 private:
  U64 sums_{};
};

class PairSums {
 public:
  ZAVRI_INLINE void add(U8 v) {
    all_ += (U32)sum_bytes(v);
    odd_ += (U32)sum_bytes((U8)((U16)v >> 8));
  }

  // Both totals, below 2^32, go through one sum of lanes: sum_bytes leaves the upper half of every
  // 64-bit lane 0, where the sums of odd bytes are put.
  ZAVRI_INLINE PairTotals totals() const {
    const uint64_t both = sum_lanes((U64)(all_ - odd_) + ((U64)odd_ << 32));
    return {static_cast<uint32_t>(both), static_cast<uint32_t>(both >> 32)};
  }

 private:
  U32 all_{};
  U32 odd_{};
};

ZAVRI_INLINE uint32_t clear_bytes(U8 mask) {
  return static_cast<uint32_t>(ZAVRI_MM(movemask_epi8, (Native)~mask));
}

ZAVRI_INLINE bool all_set(U8 mask) { return clear_bytes(mask) == 0; }

ZAVRI_INLINE size_t first_clear(U8 mask) {
  return static_cast<size_t>(__builtin_ctz(clear_bytes(mask)));
}

}  // namespace
}  // namespace zavri
