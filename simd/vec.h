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

}  // namespace
}  // namespace zavri
