#pragma once

// What filters with a table of weights need beyond simd/vec.h: byte tables, sums of products of
// bytes in 16 bits. Only for targets that look bytes up in registers; elsewhere such a
// filter is faster sample by sample.

#include "simd/vec.h"

#if defined(ZAVRI_X86) || defined(ZAVRI_NEON)
#define ZAVRI_HAS_WEIGHTED_SUMS 1

namespace zavri {
namespace {

typedef int8_t S8 __attribute__((vector_size(ZAVRI_VECTOR_BYTES)));

// Bytes change their lanes within halves of 16 bytes only, which is what AVX2 is good at.
constexpr ptrdiff_t kHalfBytes = 16;
constexpr size_t kHalves = kVectorBytes / kHalfBytes;

// The halves from, or to, two places `distance` bytes apart; 16-byte vectors have but the first.
ZAVRI_INLINE V8 load_halves(const uint8_t* from, [[maybe_unused]] ptrdiff_t distance) {
#if ZAVRI_VECTOR_BYTES == 32
  return (V8)_mm256_loadu2_m128i(reinterpret_cast<const __m128i*>(from + distance),
                                 reinterpret_cast<const __m128i*>(from));
#else
  return load(from);
#endif
}
ZAVRI_INLINE void store_halves(uint8_t* to, [[maybe_unused]] ptrdiff_t distance, V8 v) {
#if ZAVRI_VECTOR_BYTES == 32
  _mm256_storeu2_m128i(reinterpret_cast<__m128i*>(to + distance), reinterpret_cast<__m128i*>(to),
                       (Native)v);
#else
  store(to, v);
#endif
}

// The lanes of a and b in turn, from the lower and from the upper parts of their halves.
template <class V, size_t kUpper, size_t... kLane>
ZAVRI_INLINE V zip(V a, V b, std::index_sequence<kLane...>) {
  constexpr size_t kHalf = kHalfBytes / sizeof(a[0]);
  constexpr size_t kOf[] = {0, kHalf * kHalves};  // a, b
  return __builtin_shufflevector(a, b,
                                 static_cast<int>(kLane / kHalf * kHalf + kUpper * kHalf / 2 +
                                                  kLane % kHalf / 2 + kOf[kLane % 2])...);
}
template <class V>
ZAVRI_INLINE V zip_lower(V a, V b) {
  return zip<V, 0>(a, b, std::make_index_sequence<sizeof(V) / sizeof(a[0])>());
}
template <class V>
ZAVRI_INLINE V zip_upper(V a, V b) {
  return zip<V, 1>(a, b, std::make_index_sequence<sizeof(V) / sizeof(a[0])>());
}

// 16-bit lanes for all lanes of a V8, in the places where zip_lower and zip_upper put them.
struct Wide {
  V16 lower;
  V16 upper;
};

ZAVRI_INLINE Wide widen(V8 low_bytes, V8 high_bytes) {
  return {(V16)zip_lower(low_bytes, high_bytes), (V16)zip_upper(low_bytes, high_bytes)};
}

// Declared in both bodies:
//   difference(S8 a, S8 b)    a - b, saturated
//   magnitude(S8 a)           |a|, which is 128 for -128
//   larger(V8 a, V8 b)
//   ByteTable<entries>        at(index): the table's byte, 0 beyond its end
//   add_weights(Wide& sums, V8 w1, V8 w2)                      adds w1 + w2
//   add_products(Wide& sums, V8 w1, S8 d1, V8 w2, S8 d2)       adds w1 * d1 + w2 * d2
//                             weights are up to 127
//   narrow(Wide)              the lanes as bytes; all are in [-128, 127]
//   high_product(a, b)        (a * b) >> 16, for a and b below 2^15
//   split_cells(quads, &first, &second)  the first and the second bytes of the 4-byte cells of four
//                             vectors: those of each vector's first half in turn, then those of the
//                             second halves
#ifdef ZAVRI_X86

ZAVRI_INLINE S8 difference(S8 a, S8 b) { return (S8)ZAVRI_MM(subs_epi8, (Native)a, (Native)b); }

ZAVRI_INLINE V8 magnitude(S8 a) { return (V8)ZAVRI_MM(abs_epi8, (Native)a); }

ZAVRI_INLINE V8 larger(V8 a, V8 b) { return (V8)ZAVRI_MM(max_epu8, (Native)a, (Native)b); }

template <size_t kEntries>
class ByteTable {
 public:
  ZAVRI_INLINE explicit ByteTable(const uint8_t* entries) {
    for (size_t i = 0; i < kParts; ++i) parts_[i] = load_halves(entries + i * kPart, 0);
  }

  ZAVRI_INLINE V8 at(V8 index) const {
    V8 found{};
    for (size_t i = 0; i < kParts; ++i) {
      // A part's own indices become 0x70 to 0x7f; all others get bit 7, which gives 0.
      const V8 local = index - static_cast<uint8_t>(i * kPart);
      const Native own = ZAVRI_MM(adds_epu8, (Native)local, (Native)splat8(0x70));
      found |= (V8)ZAVRI_MM(shuffle_epi8, (Native)parts_[i], own);
    }
    return found;
  }

 private:
  static constexpr size_t kPart = 16;
  static constexpr size_t kParts = kEntries / kPart;
  V8 parts_[kParts];
};

ZAVRI_INLINE void add_products(Wide& sums, V8 w1, S8 d1, V8 w2, S8 d2) {
  const auto products = [](V8 w, S8 d) {
    return (V16)ZAVRI_MM(maddubs_epi16, (Native)w, (Native)d);
  };
  sums.lower += products(zip_lower(w1, w2), zip_lower(d1, d2));
  sums.upper += products(zip_upper(w1, w2), zip_upper(d1, d2));
}

ZAVRI_INLINE void add_weights(Wide& sums, V8 w1, V8 w2) {
  const S8 one = (S8)splat8(1);
  add_products(sums, w1, one, w2, one);
}

ZAVRI_INLINE S8 narrow(Wide wide) {
  return (S8)ZAVRI_MM(packs_epi16, (Native)wide.lower, (Native)wide.upper);
}

ZAVRI_INLINE V16 high_product(V16 a, V16 b) {
  return (V16)ZAVRI_MM(mulhi_epu16, (Native)a, (Native)b);
}

ZAVRI_INLINE void split_cells(const V8* quads, V8* first, V8* second) {
  constexpr uint8_t kOrder[kHalfBytes] = {0, 4, 8, 12, 1, 5, 9, 13};
  const V8 order = load_halves(kOrder, 0);
  V32 sorted[4];
  for (size_t i = 0; i < 4; ++i) {
    sorted[i] = (V32)ZAVRI_MM(shuffle_epi8, (Native)quads[i], (Native)order);
  }
  const V64 a = (V64)zip_lower(sorted[0], sorted[1]);
  const V64 b = (V64)zip_lower(sorted[2], sorted[3]);
  *first = (V8)zip_lower(a, b);
  *second = (V8)zip_upper(a, b);
}

#else

ZAVRI_INLINE S8 difference(S8 a, S8 b) { return (S8)vqsubq_s8((int8x16_t)a, (int8x16_t)b); }
ZAVRI_INLINE V8 magnitude(S8 a) { return (V8)vabsq_s8((int8x16_t)a); }
ZAVRI_INLINE V8 larger(V8 a, V8 b) { return (V8)vmaxq_u8((uint8x16_t)a, (uint8x16_t)b); }

template <size_t kEntries>
class ByteTable {
 public:
  ZAVRI_INLINE explicit ByteTable(const uint8_t* entries) {
    for (size_t i = 0; i < kEntries / 8; ++i) parts_[i / 4].val[i % 4] = vld1_u8(entries + 8 * i);
  }

  ZAVRI_INLINE V8 at(V8 index) const {
    const auto i = (uint8x16_t)index;
    return (V8)vcombine_u8(at(vget_low_u8(i)), at(vget_high_u8(i)));
  }

 private:
  ZAVRI_INLINE uint8x8_t at(uint8x8_t index) const {
    if constexpr (kEntries == 16) {
      return vtbl2_u8({{parts_[0].val[0], parts_[0].val[1]}}, index);
    }
    uint8x8_t found = vtbl4_u8(parts_[0], index);
    for (size_t i = 1; i < kEntries / 32; ++i) {
      index = vsub_u8(index, vdup_n_u8(32));
      found = vtbx4_u8(found, parts_[i], index);
    }
    return found;
  }

  uint8x8x4_t parts_[(kEntries + 31) / 32];
};

ZAVRI_INLINE void add_products(Wide& sums, V8 w1, S8 d1, V8 w2, S8 d2) {
  const auto add = [&sums](int8x16_t w, int8x16_t d) {
    sums.lower = (V16)vmlal_s8((int16x8_t)sums.lower, vget_low_s8(w), vget_low_s8(d));
    sums.upper = (V16)vmlal_s8((int16x8_t)sums.upper, vget_high_s8(w), vget_high_s8(d));
  };
  add((int8x16_t)w1, (int8x16_t)d1);
  add((int8x16_t)w2, (int8x16_t)d2);
}

ZAVRI_INLINE void add_weights(Wide& sums, V8 w1, V8 w2) {
  const auto both = (uint8x16_t)(w1 + w2);
  sums.lower = (V16)vaddw_u8((uint16x8_t)sums.lower, vget_low_u8(both));
  sums.upper = (V16)vaddw_u8((uint16x8_t)sums.upper, vget_high_u8(both));
}

ZAVRI_INLINE S8 narrow(Wide wide) {
  return (S8)vcombine_s8(vmovn_s16((int16x8_t)wide.lower), vmovn_s16((int16x8_t)wide.upper));
}

ZAVRI_INLINE V16 high_product(V16 a, V16 b) {
  return (V16)vqdmulhq_s16((int16x8_t)a, (int16x8_t)b) >> 1;
}

ZAVRI_INLINE void split_cells(const V8* quads, V8* first, V8* second) {
  const auto pairs = [](V8 a, V8 b) { return vuzpq_u16((uint16x8_t)a, (uint16x8_t)b).val[0]; };
  const uint8x16x2_t bytes =
      vuzpq_u8((uint8x16_t)pairs(quads[0], quads[1]), (uint8x16_t)pairs(quads[2], quads[3]));
  *first = (V8)bytes.val[0];
  *second = (V8)bytes.val[1];
}

#endif

// Turns the 4 by 4 cells of 4 bytes that the first halves hold, and those of the second halves.
ZAVRI_INLINE void transpose_cells(V8* vectors) {
  const V32 a = (V32)vectors[0];
  const V32 b = (V32)vectors[1];
  const V32 c = (V32)vectors[2];
  const V32 d = (V32)vectors[3];
  const V32 ac_lower = zip_lower(a, c);
  const V32 bd_lower = zip_lower(b, d);
  const V32 ac_upper = zip_upper(a, c);
  const V32 bd_upper = zip_upper(b, d);
  vectors[0] = (V8)zip_lower(ac_lower, bd_lower);
  vectors[1] = (V8)zip_upper(ac_lower, bd_lower);
  vectors[2] = (V8)zip_lower(ac_upper, bd_upper);
  vectors[3] = (V8)zip_upper(ac_upper, bd_upper);
}

}  // namespace
}  // namespace zavri

#else
#define ZAVRI_HAS_WEIGHTED_SUMS 0
#endif
