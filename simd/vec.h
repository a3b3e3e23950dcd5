#pragma once

// The kernels compute in vectors of kVectorBytes bytes, which are the compiler's own extension. Its
// operators work lane by lane: + - * wrap, and a comparison sets all bits of the lanes where it
// holds. The operations listed here are those that a target has in few instructions and that
// compilers do not find. simd/generic.h has a body of each without intrinsics; a target's own file
// takes these over or replaces them. Only kernel sources include this header, and each may do so in
// all its builds. Everything here has internal linkage, so that the linker cannot mix the builds.
//
// A vector consists of blocks of 16 bytes. A Wide has a 16-bit lane for each byte of a vector:
// `lower` those for the bytes 0 .. 7 of each block, `upper` those for the bytes 8 .. 15, in order.
// A mask has whole bytes set or clear.
//
// Loops
//   for_vectors(first, end, make)   calls make(i) for vectors of the bytes first .. end - 1, each
//                                   from byte i on; the last one ends at `end`, which is at least
//                                   kVectorBytes, and may repeat bytes of the one before it
// Registers
//   kRoomForTwoStates               whether they hold two states of several vectors each, or little
//                                   is lost where they do not
// Memory, at any address
//   load<V>(from), store(to, v)     a vector
//   load_next(&from), store_next(&to, v)
//                                   likewise, and move the address on to the vector behind
//   load_blocks(from, distance)     block i is the 16 bytes at from + i * distance
//   store_blocks(to, distance, v)   likewise
//   load_deinterleaved<V>(from)     of two vectors the lanes 0, 2, .. as even, 1, 3, .. as odd
//   store_interleaved(to, a, b)     two vectors a[0], b[0], a[1], b[1], .. of bytes
//   fill_bytes(to, byte, n)         sets n bytes
// Order
//   splat<V>(x)                     x in every lane
//   splat_first_pair(U8 v)          v[0], v[1], v[0], v[1], ..
//   duplicate_even(U8 v)            v[0], v[0], v[2], v[2], ..
//   interleave_lower(V a, V b)      a[0], b[0], a[1], b[1], .. of the lower halves of blocks
//   interleave_upper(V a, V b)      the same of the upper halves
//   split_cells(U8* v, even, odd)   bytes 0, 4, .. of the blocks 0 of v[0] to v[3] make the block 0
//                                   of even, bytes 1, 5, .. that of odd; blocks 1 likewise
//   widen(U8 v)                     the bytes as a Wide
//   widen(U8 low, U8 high)          low + 256 * high as a Wide
//   narrow(Wide)                    the lanes, 0 .. 255, as U8
//   narrow_signed(Wide)             the lanes, -128 .. 127, as S8
//   narrow(U16 a, U16 b)            the lanes of a, then those of b, all 0 .. 255
// Lane by lane
//   avg_round_up(U8 a, U8 b)        (a + b + 1) >> 1
//   avg_round_down(U8 a, U8 b)      (a + b) >> 1
//   weighted_mean(U8 a, b, weight)  ((128 - weight) * a + weight * b) >> 7, weight up to 128
//   saturating_sub(U8 a, U8 b)      a - b, but at least 0
//   saturating_sub(S8 a, S8 b)      a - b, clamped to -128 .. 127
//   abs(S8 a)                       |a| as U8
//   abs_diff(U8 a, U8 b)            |a - b|
//   at_most(U8 a, U8 b)             sets the bytes where a <= b
//   max(U8 a, U8 b)                 the larger one
//   min(U32 a, U32 b)               the smaller one
//   select(U8 mask, U8 a, U8 b)     a where the mask is set, b elsewhere
//   mul_high(U16 a, U16 b)          a * b >> 16, both below 2^15
//   mul_high_rounded(S16 a, S16 b)  (a * b + 2^14) >> 15, not both -2^15
//   reciprocals<least, most>(U16 w) 2^15 / w to the nearest, w from `least` to `most`
//   small_quotient(U16 a, U16 b)    a / b rounded down; a < 32 * b, a < 2^15, 0 < b < 2^11
// Tables
//   ByteTable<n>(entries).at(U8 i)  entries[i], or 0 from n on; n is 16, 32, 64 or 128
// Sums
//   multiply_add_pairs(U8 a, S8 b)  a[2i] * b[2i] + a[2i + 1] * b[2i + 1], within 16 bits
//   add_products(Wide, U8 w1, S8 d1, U8 w2, S8 d2)  adds w1 * d1 + w2 * d2; w1, w2 up to 127
//   add_weights(Wide, U8 a, U8 b)   adds a + b, both up to 127
//   ByteSums                        sums all bytes, modulo 2^32, by add(U8 v), add_abs_diff(a, b),
//                                   add(ByteSums); settle() is due after kMostAdds of the first
//                                   two, and before add(ByteSums) and total()
//   PairSums                        sums the even and the odd bytes by add(U8 v); totals(), each
//                                   below 2^32
// Masks, whose pairs of bytes are alike
//   all_set(U8 mask)                whether all bytes are set
//   first_clear(U8 mask)            the index of the first clear byte; there is at least one

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <utility>

#include "simd/builds.h"

// The plain build gives no length, because it calls no vector form: any length serves it.
#ifndef ZAVRI_VECTOR_BYTES
#define ZAVRI_VECTOR_BYTES 16
#endif

#define ZAVRI_INLINE inline __attribute__((always_inline))

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__,
              "16-bit lanes have the even byte of a pair as their low half");

namespace zavri {
namespace {

constexpr bool kVectorized = !std::is_same_v<ThisBuild, PlainBuild>;

constexpr size_t kVectorBytes = ZAVRI_VECTOR_BYTES;
constexpr size_t kBlockBytes = 16;
constexpr size_t kBlocks = kVectorBytes / kBlockBytes;

typedef uint8_t U8 __attribute__((vector_size(ZAVRI_VECTOR_BYTES)));
typedef uint16_t U16 __attribute__((vector_size(ZAVRI_VECTOR_BYTES)));
typedef uint32_t U32 __attribute__((vector_size(ZAVRI_VECTOR_BYTES)));
typedef uint64_t U64 __attribute__((vector_size(ZAVRI_VECTOR_BYTES)));
typedef int8_t S8 __attribute__((vector_size(ZAVRI_VECTOR_BYTES)));
typedef int16_t S16 __attribute__((vector_size(ZAVRI_VECTOR_BYTES)));
typedef int32_t S32 __attribute__((vector_size(ZAVRI_VECTOR_BYTES)));

template <class V>
using Lane = std::decay_t<decltype(V{}[0])>;
template <class V>
constexpr size_t kLanesOf = sizeof(V) / sizeof(Lane<V>);

struct Wide {
  U16 lower;
  U16 upper;
};

template <class V>
struct Deinterleaved {
  V even;
  V odd;
};

struct PairTotals {
  uint32_t even;
  uint32_t odd;
};

template <class Make>
ZAVRI_INLINE void for_vectors(size_t first, size_t end, Make make) {
  size_t i = first;
  for (; i + kVectorBytes <= end; i += kVectorBytes) make(i);
  if (i < end) make(end - kVectorBytes);
}

template <class V = U8>
ZAVRI_INLINE V load(const void* from) {
  V v;
  memcpy(&v, from, sizeof v);
  return v;
}

template <class V>
ZAVRI_INLINE void store(void* to, V v) {
  memcpy(to, &v, sizeof v);
}

template <class V>
ZAVRI_INLINE V splat(Lane<V> value) {
  return V{} + value;
}

// Returns the lanes of a and b in turn, from the half kHalf of each block.
template <size_t kHalf, class V, size_t... kLane>
ZAVRI_INLINE V interleave_halves(V a, V b, std::index_sequence<kLane...>) {
  constexpr size_t kInBlock = kBlockBytes / sizeof(a[0]);
  constexpr size_t kOf[] = {0, kLanesOf<V>};  // where a and b begin
  return __builtin_shufflevector(
      a, b,
      static_cast<int>(kLane / kInBlock * kInBlock + kHalf * kInBlock / 2 + kLane % kInBlock / 2 +
                       kOf[kLane % 2])...);
}
template <class V>
ZAVRI_INLINE V interleave_lower(V a, V b) {
  return interleave_halves<0>(a, b, std::make_index_sequence<kLanesOf<V>>());
}
template <class V>
ZAVRI_INLINE V interleave_upper(V a, V b) {
  return interleave_halves<1>(a, b, std::make_index_sequence<kLanesOf<V>>());
}

ZAVRI_INLINE Wide widen(U8 low, U8 high) {
  return {(U16)interleave_lower(low, high), (U16)interleave_upper(low, high)};
}

}  // namespace
}  // namespace zavri

#include "simd/generic.h"

#if !defined(ZAVRI_GENERIC_VECTORS) && defined(__SSE4_1__)
#define ZAVRI_X86 1
#include "simd/x86.h"
#elif !defined(ZAVRI_GENERIC_VECTORS) && defined(__ARM_NEON)
#define ZAVRI_NEON 1
#include "simd/neon.h"
#else
namespace zavri {
namespace {
using namespace generic;
}  // namespace
}  // namespace zavri
#endif
