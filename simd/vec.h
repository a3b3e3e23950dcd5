#pragma once

// Vectors of ZAVRI_VECTOR_BYTES bytes in the compiler's own vector extension: + - & | ^ << >> and
// the comparisons (all bits set where true) are the language's. Named here is only what a target
// has as one instruction and compilers do not find, each with an x86, a NEON and a generic body.
// Kernel sources only: everything has internal linkage, because they are compiled more than once.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

#if !defined(ZAVRI_GENERIC_VECTORS) && defined(__SSSE3__)
#define ZAVRI_X86 1
#include <immintrin.h>
#elif !defined(ZAVRI_GENERIC_VECTORS) && defined(__ARM_NEON)
#define ZAVRI_NEON 1
#include <arm_neon.h>
#endif

#define ZAVRI_INLINE inline __attribute__((always_inline))

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__,
              "16-bit lanes take the even byte of a pair as their low half");

namespace zavri {
namespace {

constexpr size_t kVectorBytes = ZAVRI_VECTOR_BYTES;

typedef uint8_t V8 __attribute__((vector_size(ZAVRI_VECTOR_BYTES)));
typedef uint16_t V16 __attribute__((vector_size(ZAVRI_VECTOR_BYTES)));
typedef uint32_t V32 __attribute__((vector_size(ZAVRI_VECTOR_BYTES)));
typedef uint64_t V64 __attribute__((vector_size(ZAVRI_VECTOR_BYTES)));
typedef int16_t S16 __attribute__((vector_size(ZAVRI_VECTOR_BYTES)));
typedef int32_t S32 __attribute__((vector_size(ZAVRI_VECTOR_BYTES)));

ZAVRI_INLINE V8 load(const uint8_t* from) {
  V8 v;
  memcpy(&v, from, sizeof v);
  return v;
}

ZAVRI_INLINE void store(uint8_t* to, V8 v) { memcpy(to, &v, sizeof v); }

ZAVRI_INLINE V8 splat8(unsigned value) { return V8{} + static_cast<uint8_t>(value); }

ZAVRI_INLINE V16 splat16(unsigned value) { return V16{} + static_cast<uint16_t>(value); }

// The first pair of bytes in all pairs.
template <size_t... kLane>
ZAVRI_INLINE V16 splat_first(V16 v, std::index_sequence<kLane...>) {
  return __builtin_shufflevector(v, v, static_cast<int>(0 * kLane)...);
}
ZAVRI_INLINE V8 splat_first_pair(V8 v) {
  return (V8)splat_first((V16)v, std::make_index_sequence<kVectorBytes / 2>());
}

#ifdef ZAVRI_X86

#if ZAVRI_VECTOR_BYTES == 32
typedef __m256i Native;
#define ZAVRI_MM(operation, ...) _mm256_##operation(__VA_ARGS__)
ZAVRI_INLINE uint32_t mask_bits(V8 mask) {
  return static_cast<uint32_t>(_mm256_movemask_epi8((Native)mask));
}
#else
typedef __m128i Native;
#define ZAVRI_MM(operation, ...) _mm_##operation(__VA_ARGS__)
ZAVRI_INLINE uint32_t mask_bits(V8 mask) {
  return static_cast<uint32_t>(_mm_movemask_epi8((Native)mask));
}
#endif

// (a + b + 1) >> 1
ZAVRI_INLINE V8 avg_up(V8 a, V8 b) { return (V8)ZAVRI_MM(avg_epu8, (Native)a, (Native)b); }

// (a + b) >> 1
ZAVRI_INLINE V8 avg_down(V8 a, V8 b) { return avg_up(a, b) - ((a ^ b) & 1); }

// Non-zero exactly where a > b.
ZAVRI_INLINE V8 above(V8 a, V8 b) { return (V8)ZAVRI_MM(subs_epu8, (Native)a, (Native)b); }

ZAVRI_INLINE V8 absdiff(V8 a, V8 b) { return above(a, b) | above(b, a); }

// a where the mask is set, b elsewhere. Masks have whole bytes set.
ZAVRI_INLINE V8 select(V8 mask, V8 a, V8 b) {
#if ZAVRI_VECTOR_BYTES == 16 && defined(__SSE4_1__)
  return (V8)_mm_blendv_epi8((Native)b, (Native)a, (Native)mask);
#else
  return (mask & a) | (~mask & b);  // the 32-byte blend costs as much
#endif
}

// Whether all bytes of a mask are set, and the index of the first that is not.
ZAVRI_INLINE bool all(V8 mask) { return mask_bits(~mask) == 0; }
ZAVRI_INLINE size_t first_clear(V8 mask) {
  return static_cast<size_t>(__builtin_ctz(mask_bits(~mask)));
}

// Adds every byte to one of the 32-bit lanes, 4 or 8 to a lane.
ZAVRI_INLINE V32 add_up(V32 sums, V8 v) {
  return sums + (V32)ZAVRI_MM(sad_epu8, (Native)v, (Native)V8{});
}

// The same of |a - b|.
ZAVRI_INLINE V32 add_absdiff(V32 sums, V8 a, V8 b) {
  return sums + (V32)ZAVRI_MM(sad_epu8, (Native)a, (Native)b);
}

#elif defined(ZAVRI_NEON)

ZAVRI_INLINE V8 avg_up(V8 a, V8 b) { return (V8)vrhaddq_u8((uint8x16_t)a, (uint8x16_t)b); }
ZAVRI_INLINE V8 avg_down(V8 a, V8 b) { return (V8)vhaddq_u8((uint8x16_t)a, (uint8x16_t)b); }
ZAVRI_INLINE V8 above(V8 a, V8 b) { return (V8)vqsubq_u8((uint8x16_t)a, (uint8x16_t)b); }
ZAVRI_INLINE V8 absdiff(V8 a, V8 b) { return (V8)vabdq_u8((uint8x16_t)a, (uint8x16_t)b); }
ZAVRI_INLINE V8 select(V8 mask, V8 a, V8 b) {
  return (V8)vbslq_u8((uint8x16_t)mask, (uint8x16_t)a, (uint8x16_t)b);
}
ZAVRI_INLINE V32 add_up(V32 sums, V8 v) {
  return (V32)vpadalq_u16((uint32x4_t)sums, vpaddlq_u8((uint8x16_t)v));
}

#else

ZAVRI_INLINE V8 avg_up(V8 a, V8 b) { return (a | b) - ((a ^ b) >> 1); }
ZAVRI_INLINE V8 avg_down(V8 a, V8 b) { return (a & b) + ((a ^ b) >> 1); }
ZAVRI_INLINE V8 above(V8 a, V8 b) { return (a - b) & (V8)(a > b); }
ZAVRI_INLINE V8 absdiff(V8 a, V8 b) { return above(a, b) | above(b, a); }
ZAVRI_INLINE V8 select(V8 mask, V8 a, V8 b) { return (mask & a) | (~mask & b); }
ZAVRI_INLINE V32 add_up(V32 sums, V8 v) {
  const V16 pairs = ((V16)v & splat16(0xff)) + ((V16)v >> 8);
  return sums + (((V32)pairs & 0xffff) + ((V32)pairs >> 16));
}

#endif

#ifndef ZAVRI_X86

ZAVRI_INLINE V32 add_absdiff(V32 sums, V8 a, V8 b) { return add_up(sums, absdiff(a, b)); }

ZAVRI_INLINE bool all(V8 mask) {
  uint64_t bits = ~uint64_t{0};
  for (size_t i = 0; i < kVectorBytes / 8; ++i) bits &= ((V64)mask)[i];
  return ~bits == 0;
}

ZAVRI_INLINE size_t first_clear(V8 mask) {
  size_t i = 0;
  while (~((V64)mask)[i] == 0) ++i;
  return i * 8 + static_cast<size_t>(__builtin_ctzll(~((V64)mask)[i])) / 8;
}

#endif

ZAVRI_INLINE V16 select(V16 mask, V16 a, V16 b) { return (V16)select((V8)mask, (V8)a, (V8)b); }
ZAVRI_INLINE V32 select(V32 mask, V32 a, V32 b) { return (V32)select((V8)mask, (V8)a, (V8)b); }

// The sums of all lanes of two vectors, each below 2^32.
struct Totals {
  uint32_t a;
  uint32_t b;
};
ZAVRI_INLINE Totals totals(V32 a, V32 b) {
#ifdef ZAVRI_X86
  // Sums stand in the lower halves of 64-bit lanes only: both go through one reduction.
  const V64 both = (V64)a + ((V64)b << 32);
  uint64_t sum = 0;
  for (size_t i = 0; i < kVectorBytes / 8; ++i) sum += both[i];
  return {static_cast<uint32_t>(sum), static_cast<uint32_t>(sum >> 32)};
#else
  Totals sums{};
  for (size_t i = 0; i < kVectorBytes / 4; ++i) {
    sums.a += a[i];
    sums.b += b[i];
  }
  return sums;
#endif
}

ZAVRI_INLINE V16 load16(const void* from) {
  V16 v;
  memcpy(&v, from, sizeof v);
  return v;
}

ZAVRI_INLINE void store16(void* to, V16 v) { memcpy(to, &v, sizeof v); }

// In each 16 bytes of a vector those from from[offsets[i]] on.
ZAVRI_INLINE V8 load_each_16(const uint8_t* from, const uint32_t* offsets) {
#if ZAVRI_VECTOR_BYTES == 32
  const auto* const lo = reinterpret_cast<const __m128i*>(from + offsets[0]);
  const auto* const hi = reinterpret_cast<const __m128i*>(from + offsets[1]);
  return (V8)_mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadu_si128(lo)),
                                     _mm_loadu_si128(hi), 1);
#else
  return load(from + offsets[0]);
#endif
}

// As many bytes as a vector has 16-bit lanes, widened.
ZAVRI_INLINE V16 load_wide(const uint8_t* from) {
  typedef uint8_t Half __attribute__((vector_size(ZAVRI_VECTOR_BYTES / 2)));
  Half half;
  memcpy(&half, from, sizeof half);
  return __builtin_convertvector(half, V16);
}

template <class V, size_t... kLanes>
ZAVRI_INLINE V even_lanes(V a, V b, std::index_sequence<kLanes...>) {
  return __builtin_shufflevector(a, b, static_cast<int>(2 * kLanes)...);
}

// Lanes 0, 2, 4 .. of a, then those of b.
template <class V>
ZAVRI_INLINE V even(V a, V b) {
  return even_lanes(a, b, std::make_index_sequence<sizeof(V) / sizeof(a[0])>());
}

template <size_t kFrom, size_t... kLanes>
ZAVRI_INLINE V8 zip_lanes(V8 a, V8 b, std::index_sequence<kLanes...>) {
  constexpr size_t kOfB[] = {0, kVectorBytes};
  return __builtin_shufflevector(a, b, static_cast<int>(kFrom + kLanes / 2 + kOfB[kLanes % 2])...);
}

// a[0], b[0], a[1], b[1] .. of the lower and of the upper halves.
ZAVRI_INLINE V8 zip_lo(V8 a, V8 b) {
  return zip_lanes<0>(a, b, std::make_index_sequence<kVectorBytes>());
}
ZAVRI_INLINE V8 zip_hi(V8 a, V8 b) {
  return zip_lanes<kVectorBytes / 2>(a, b, std::make_index_sequence<kVectorBytes>());
}

// 32-bit sums, one for each lane of an S16; which stands where, only the functions below know.
struct Sums {
  S32 part[2];
};

ZAVRI_INLINE Sums splat_sums(int32_t value) { return {{S32{} + value, S32{} + value}}; }

template <int kBits>
ZAVRI_INLINE Sums shift_right(Sums sums) {
  return {{sums.part[0] >> kBits, sums.part[1] >> kBits}};
}

// Declared in every body:
//   bytes_of(V16 a, V16 b)    the lanes of a, then those of b, all below 256
//   bytes_of(Sums a, Sums b)  the sums of a, then those of b, saturated; all within int16_t
//   lookup16(V8 tables, V8 indices)  in each 16 bytes: byte i is tables[indices[i]], indices 0..15
//   weigh_pairs(V8 samples, V8 weights)  in each 16-bit lane: both samples less 128, each times its
//                                        weight, added; the two weights sum to at most 256
//   multiply_high(S16 a, S16 b)  (2ab + 2^15) >> 16; a and b not both -2^15
//   add_products(Sums, S16 a, int16_t weight_a, S16 b, int16_t weight_b)
#ifdef ZAVRI_X86

// AVX2 packs its two halves each for itself.
ZAVRI_INLINE V8 in_order(V8 packed) {
#if ZAVRI_VECTOR_BYTES == 32
  return (V8)_mm256_permute4x64_epi64((Native)packed, _MM_SHUFFLE(3, 1, 2, 0));
#else
  return packed;
#endif
}

ZAVRI_INLINE V8 bytes_of(V16 a, V16 b) {
  return in_order((V8)ZAVRI_MM(packus_epi16, (Native)a, (Native)b));
}

ZAVRI_INLINE V8 bytes_of(Sums a, Sums b) {
  const auto pack = [](Sums sums) {
    return (V16)ZAVRI_MM(packs_epi32, (Native)sums.part[0], (Native)sums.part[1]);
  };
  return bytes_of(pack(a), pack(b));
}

ZAVRI_INLINE V8 lookup16(V8 tables, V8 indices) {
  return (V8)ZAVRI_MM(shuffle_epi8, (Native)tables, (Native)indices);
}

ZAVRI_INLINE S16 weigh_pairs(V8 samples, V8 weights) {
  return (S16)ZAVRI_MM(maddubs_epi16, (Native)weights, (Native)(samples ^ 0x80));
}

ZAVRI_INLINE S16 multiply_high(S16 a, S16 b) {
  return (S16)ZAVRI_MM(mulhrs_epi16, (Native)a, (Native)b);
}

ZAVRI_INLINE Sums add_products(Sums sums, S16 a, int16_t weight_a, S16 b, int16_t weight_b) {
  const S32 weights = S32{} + ((weight_a & 0xffff) | weight_b * 0x10000);
  const Native lo = ZAVRI_MM(unpacklo_epi16, (Native)a, (Native)b);
  const Native hi = ZAVRI_MM(unpackhi_epi16, (Native)a, (Native)b);
  sums.part[0] += (S32)ZAVRI_MM(madd_epi16, lo, (Native)weights);
  sums.part[1] += (S32)ZAVRI_MM(madd_epi16, hi, (Native)weights);
  return sums;
}

#elif defined(ZAVRI_NEON)

ZAVRI_INLINE V8 bytes_of(V16 a, V16 b) {
  return (V8)vcombine_u8(vmovn_u16((uint16x8_t)a), vmovn_u16((uint16x8_t)b));
}

ZAVRI_INLINE V8 bytes_of(Sums a, Sums b) {
  const auto pack = [](Sums sums) {
    return vqmovun_s16(
        vcombine_s16(vmovn_s32((int32x4_t)sums.part[0]), vmovn_s32((int32x4_t)sums.part[1])));
  };
  return (V8)vcombine_u8(pack(a), pack(b));
}

ZAVRI_INLINE V8 lookup16(V8 tables, V8 indices) {
  const auto table = (uint8x16_t)tables;
  const auto index = (uint8x16_t)indices;
#ifdef __aarch64__
  return (V8)vqtbl1q_u8(table, index);
#else
  const uint8x8x2_t halves = {{vget_low_u8(table), vget_high_u8(table)}};
  return (V8)vcombine_u8(vtbl2_u8(halves, vget_low_u8(index)),
                         vtbl2_u8(halves, vget_high_u8(index)));
#endif
}

ZAVRI_INLINE S16 multiply_high(S16 a, S16 b) {
  return (S16)vqrdmulhq_s16((int16x8_t)a, (int16x8_t)b);
}

ZAVRI_INLINE Sums add_products(Sums sums, S16 a, int16_t weight_a, S16 b, int16_t weight_b) {
  const auto add = [](S32 sum, int16x4_t lanes, int16_t weight) {
    return (S32)vmlal_n_s16((int32x4_t)sum, lanes, weight);
  };
  const auto a8 = (int16x8_t)a;
  const auto b8 = (int16x8_t)b;
  const S32 lo = add(sums.part[0], vget_low_s16(a8), weight_a);
  const S32 hi = add(sums.part[1], vget_high_s16(a8), weight_a);
  return {{add(lo, vget_low_s16(b8), weight_b), add(hi, vget_high_s16(b8), weight_b)}};
}

#else

ZAVRI_INLINE V8 bytes_of(V16 a, V16 b) { return even((V8)a, (V8)b); }

ZAVRI_INLINE V8 bytes_of(Sums a, Sums b) {
  const auto saturated = [](S32 sum) {
    const S32 positive = sum & ~(sum >> 31);
    const S32 above = positive > 255;
    return (V32)((positive & ~above) | (above & 255));
  };
  const auto pack = [&](Sums sums) {
    return (V16)(saturated(sums.part[0]) | saturated(sums.part[1]) << 16);
  };
  return bytes_of(pack(a), pack(b));
}

ZAVRI_INLINE V8 lookup16(V8 tables, V8 indices) {
  V8 found{};
  for (size_t i = 0; i < kVectorBytes; ++i) found[i] = tables[i / 16 * 16 + indices[i]];
  return found;
}

ZAVRI_INLINE S32 low_lanes(S16 v) { return (S32)((V32)v << 16) >> 16; }
ZAVRI_INLINE S32 high_lanes(S16 v) { return (S32)v >> 16; }

ZAVRI_INLINE S16 multiply_high(S16 a, S16 b) {
  const S32 low = (low_lanes(a) * low_lanes(b) + 0x4000) >> 15;
  const S32 high = (high_lanes(a) * high_lanes(b) + 0x4000) >> 15;
  return (S16)(((V32)low & 0xffff) | (V32)high << 16);
}

ZAVRI_INLINE Sums add_products(Sums sums, S16 a, int16_t weight_a, S16 b, int16_t weight_b) {
  return {{sums.part[0] + low_lanes(a) * weight_a + low_lanes(b) * weight_b,
           sums.part[1] + high_lanes(a) * weight_a + high_lanes(b) * weight_b}};
}

#endif

#ifndef ZAVRI_X86

ZAVRI_INLINE S16 weigh_pairs(V8 samples, V8 weights) {
  const V16 signed_samples = (V16)(samples ^ 0x80);
  const S16 even_sample = (S16)(signed_samples << 8) >> 8;
  const S16 odd_sample = (S16)signed_samples >> 8;
  return (S16)((V16)even_sample * ((V16)weights & 0xff) + (V16)odd_sample * ((V16)weights >> 8));
}

#endif

}  // namespace
}  // namespace zavri
