#pragma once

// This file, which simd/vec.h includes, has its operations for NEON of ARMv7 and AArch64.

#include <arm_neon.h>

namespace zavri {
namespace {

using generic::at_most;
using generic::load_blocks;
using generic::multiply_add_pairs;
using generic::store_blocks;

#ifdef __aarch64__

using generic::fill_bytes;
using generic::kRoomForTwoStates;
using generic::load_next;
using generic::store_next;

#else

constexpr bool kRoomForTwoStates = false;

// Loads and stores of NEON can move their address on, but cannot add an offset to it. Compilers,
// which compute the addresses of neighbouring vectors from one, come upon the cheaper form when
// they cannot see through a move.
template <class Byte>
ZAVRI_INLINE U8 load_next(Byte** from) {
  const U8 v = generic::load_next(from);
  asm("" : "+r"(*from));
  return v;
}

ZAVRI_INLINE void store_next(uint8_t** to, U8 v) {
  generic::store_next(to, v);
  asm("" : "+r"(*to));
}

// C libraries for all processors of ARMv7 fill without NEON.
ZAVRI_INLINE void fill_bytes(uint8_t* to, uint8_t byte, size_t n) {
  if (n < kVectorBytes) return generic::fill_bytes(to, byte, n);
  const U8 v = splat<U8>(byte);
  uint8_t* const last = to + n - kVectorBytes;
  for (; n >= 4 * kVectorBytes; n -= 4 * kVectorBytes) {
    for (size_t i = 0; i < 4; ++i) store_next(&to, v);
  }
  for (; n >= kVectorBytes; n -= kVectorBytes) store_next(&to, v);
  store(last, v);
}

#endif

template <class V>
ZAVRI_INLINE Deinterleaved<V> load_deinterleaved(const uint8_t* from) {
  if constexpr (sizeof(Lane<V>) == 1) {
    const uint8x16x2_t v = vld2q_u8(from);
    return {(V)v.val[0], (V)v.val[1]};
  } else {
    return generic::load_deinterleaved<V>(from);  // an address of pairs may be odd
  }
}

ZAVRI_INLINE void store_interleaved(uint8_t* to, U8 a, U8 b) {
  const uint8x16x2_t pairs = {{(uint8x16_t)a, (uint8x16_t)b}};
  vst2q_u8(to, pairs);
}

ZAVRI_INLINE U8 splat_first_pair(U8 v) {
  return (U8)vdupq_lane_u16(vget_low_u16((uint16x8_t)v), 0);
}

ZAVRI_INLINE U8 duplicate_even(U8 v) { return (U8)vsliq_n_u16((uint16x8_t)v, (uint16x8_t)v, 8); }

ZAVRI_INLINE void split_cells(const U8* vectors, U8* even, U8* odd) {
  const auto pairs = [](U8 a, U8 b) { return vuzpq_u16((uint16x8_t)a, (uint16x8_t)b).val[0]; };
  const uint8x16x2_t bytes = vuzpq_u8((uint8x16_t)pairs(vectors[0], vectors[1]),
                                      (uint8x16_t)pairs(vectors[2], vectors[3]));
  *even = (U8)bytes.val[0];
  *odd = (U8)bytes.val[1];
}

ZAVRI_INLINE Wide widen(U8 v) {
  const auto bytes = (uint8x16_t)v;
  return {(U16)vmovl_u8(vget_low_u8(bytes)), (U16)vmovl_u8(vget_high_u8(bytes))};
}

ZAVRI_INLINE U8 narrow(U16 a, U16 b) {
  return (U8)vcombine_u8(vmovn_u16((uint16x8_t)a), vmovn_u16((uint16x8_t)b));
}

ZAVRI_INLINE U8 narrow(Wide wide) { return narrow(wide.lower, wide.upper); }

ZAVRI_INLINE S8 narrow_signed(Wide wide) { return (S8)narrow(wide); }

ZAVRI_INLINE U8 avg_round_up(U8 a, U8 b) { return (U8)vrhaddq_u8((uint8x16_t)a, (uint8x16_t)b); }

ZAVRI_INLINE U8 avg_round_down(U8 a, U8 b) { return (U8)vhaddq_u8((uint8x16_t)a, (uint8x16_t)b); }

ZAVRI_INLINE U8 weighted_mean(U8 a, U8 b, U8 weight) {
  const U8 rest = 128 - weight;
  const auto mean = [](uint8x8_t a8, uint8x8_t rest8, uint8x8_t b8, uint8x8_t weight8) {
    return vshrn_n_u16(vmlal_u8(vmull_u8(a8, rest8), b8, weight8), 7);
  };
  const auto low = [](U8 v) { return vget_low_u8((uint8x16_t)v); };
  const auto high = [](U8 v) { return vget_high_u8((uint8x16_t)v); };
  return (U8)vcombine_u8(mean(low(a), low(rest), low(b), low(weight)),
                         mean(high(a), high(rest), high(b), high(weight)));
}

ZAVRI_INLINE U8 saturating_sub(U8 a, U8 b) { return (U8)vqsubq_u8((uint8x16_t)a, (uint8x16_t)b); }

ZAVRI_INLINE S8 saturating_sub(S8 a, S8 b) { return (S8)vqsubq_s8((int8x16_t)a, (int8x16_t)b); }

ZAVRI_INLINE U8 abs(S8 a) { return (U8)vabsq_s8((int8x16_t)a); }

ZAVRI_INLINE U8 abs_diff(U8 a, U8 b) { return (U8)vabdq_u8((uint8x16_t)a, (uint8x16_t)b); }

ZAVRI_INLINE U8 max(U8 a, U8 b) { return (U8)vmaxq_u8((uint8x16_t)a, (uint8x16_t)b); }

ZAVRI_INLINE U32 min(U32 a, U32 b) { return (U32)vminq_u32((uint32x4_t)a, (uint32x4_t)b); }

ZAVRI_INLINE U8 select(U8 mask, U8 a, U8 b) {
  return (U8)vbslq_u8((uint8x16_t)mask, (uint8x16_t)a, (uint8x16_t)b);
}

ZAVRI_INLINE U16 mul_high(U16 a, U16 b) {
  return (U16)vqdmulhq_s16((int16x8_t)a, (int16x8_t)b) >> 1;
}

ZAVRI_INLINE S16 mul_high_rounded(S16 a, S16 b) {
  return (S16)vqrdmulhq_s16((int16x8_t)a, (int16x8_t)b);
}

// One step of Newton's method doubles the 8 bits of the estimate, which architecture manuals lay
// down to the last bit. For every w from 1 on the error is too small to change the nearest number.
ZAVRI_INLINE int16x4_t half_reciprocals(uint16x4_t w) {
  const float32x4_t divisor = vcvtq_f32_u32(vmovl_u16(w));
  const float32x4_t estimate = vrecpeq_f32(divisor);
  const float32x4_t r = vmulq_f32(estimate, vrecpsq_f32(divisor, estimate));
  return vreinterpret_s16_u16(vrshrn_n_u32(vcvtq_n_u32_f32(r, 16), 1));
}

template <int kLeast, int kMost>
ZAVRI_INLINE S16 reciprocals(U16 w) {
  return (S16)vcombine_s16(half_reciprocals(vget_low_u16((uint16x8_t)w)),
                           half_reciprocals(vget_high_u16((uint16x8_t)w)));
}

// Shifts the top bits of the differences for kBit and the bits below in behind those of the bits
// above.
template <int kBit>
ZAVRI_INLINE uint16x8_t quotient_complement(uint16x8_t rest, uint16x8_t b, uint16x8_t above) {
  const uint16x8_t less = vsubq_u16(rest, vshlq_n_u16(b, kBit));
  const uint16x8_t complement = vsriq_n_u16(above, less, 5 - kBit);
  if constexpr (kBit == 0) {
    return complement;
  } else {
    return quotient_complement<kBit - 1>(vminq_u16(rest, less), b, complement);
  }
}

// The long division of the generic body: bits 14 to 10 of the complement are the quotient's.
ZAVRI_INLINE U16 small_quotient(U16 a, U16 b) {
  return 31 - ((U16)quotient_complement<4>((uint16x8_t)a, (uint16x8_t)b, uint16x8_t{}) >> 10);
}

#ifdef __aarch64__

template <size_t kEntries>
class ByteTable {
 public:
  ZAVRI_INLINE explicit ByteTable(const uint8_t* entries) {
    for (size_t i = 0; i < kEntries / 16; ++i)
      parts_[i / 4].val[i % 4] = vld1q_u8(entries + 16 * i);
  }

  ZAVRI_INLINE U8 at(U8 index) const {
    const auto i = (uint8x16_t)index;
    if constexpr (kEntries == 16) return (U8)vqtbl1q_u8(parts_[0].val[0], i);
    if constexpr (kEntries == 32) {
      return (U8)vqtbl2q_u8({{parts_[0].val[0], parts_[0].val[1]}}, i);
    }
    const uint8x16_t found = vqtbl4q_u8(parts_[0], i);
    if constexpr (kEntries == 64) return (U8)found;
    return (U8)vqtbx4q_u8(found, parts_[kEntries / 64 - 1], vsubq_u8(i, vdupq_n_u8(64)));
  }

 private:
  uint8x16x4_t parts_[(kEntries + 63) / 64];
};

#else

template <size_t kEntries>
class ByteTable {
 public:
  ZAVRI_INLINE explicit ByteTable(const uint8_t* entries) {
    for (size_t i = 0; i < kEntries / 8; ++i) parts_[i / 4].val[i % 4] = vld1_u8(entries + 8 * i);
  }

  ZAVRI_INLINE U8 at(U8 index) const {
    const auto i = (uint8x16_t)index;
    return (U8)vcombine_u8(at(vget_low_u8(i)), at(vget_high_u8(i)));
  }

 private:
  ZAVRI_INLINE uint8x8_t at(uint8x8_t index) const {
    uint8x8_t found = vtbl4_u8(parts_[0], index);
    for (size_t i = 1; i < kEntries / 32; ++i) {
      index = vsub_u8(index, vdup_n_u8(32));
      found = vtbx4_u8(found, parts_[i], index);
    }
    return found;
  }

  uint8x8x4_t parts_[kEntries / 32];
};

// The intrinsics take a struct of two halves, which GCC 12 copies at every lookup, like the result.
// In the assembly text %e and %f are the halves of a register.
template <>
class ByteTable<16> {
 public:
  ZAVRI_INLINE explicit ByteTable(const uint8_t* entries) : entries_(vld1q_u8(entries)) {}

  ZAVRI_INLINE U8 at(U8 index) const {
    uint8x16_t found;
    asm("vtbl.8 %e0, {%e1, %f1}, %e2\n\t"
        "vtbl.8 %f0, {%e1, %f1}, %f2"
        : "=&w"(found)
        : "w"(entries_), "w"((uint8x16_t)index));
    return (U8)found;
  }

 private:
  uint8x16_t entries_;
};

#endif

ZAVRI_INLINE Wide add_products(Wide sums, U8 w1, S8 d1, U8 w2, S8 d2) {
  const auto add = [&sums](int8x16_t w, int8x16_t d) {
    sums.lower = (U16)vmlal_s8((int16x8_t)sums.lower, vget_low_s8(w), vget_low_s8(d));
    sums.upper = (U16)vmlal_s8((int16x8_t)sums.upper, vget_high_s8(w), vget_high_s8(d));
  };
  add((int8x16_t)w1, (int8x16_t)d1);
  add((int8x16_t)w2, (int8x16_t)d2);
  return sums;
}

ZAVRI_INLINE Wide add_weights(Wide sums, U8 a, U8 b) {
  const auto both = (uint8x16_t)(a + b);
  return {(U16)vaddw_u8((uint16x8_t)sums.lower, vget_low_u8(both)),
          (U16)vaddw_u8((uint16x8_t)sums.upper, vget_high_u8(both))};
}

// Lanes of 16 bits gather bytes before lanes of 32 bits do. Each takes up to 2 * 255 from a vector,
// so that 128 of them, 65280 in sum, fit.
class ByteSums {
 public:
  static constexpr size_t kMostAdds = 128;

  ZAVRI_INLINE void add(U8 v) { gathered_ = (U16)vpadalq_u8((uint16x8_t)gathered_, (uint8x16_t)v); }

  ZAVRI_INLINE void add_abs_diff(U8 a, U8 b) { add(abs_diff(a, b)); }

  ZAVRI_INLINE void add(const ByteSums& other) { sums_ += other.sums_; }

  ZAVRI_INLINE void settle() {
    sums_ = (U32)vpadalq_u16((uint32x4_t)sums_, (uint16x8_t)gathered_);
    gathered_ = U16{};
  }

  ZAVRI_INLINE uint32_t total() const { return sums_[0] + sums_[1] + sums_[2] + sums_[3]; }

 private:
  U16 gathered_{};
  U32 sums_{};
};

// The sum of the even bytes is that of the pairs as numbers of 16 bits less 256 times that of the
// odd ones. As it is below 2^32 it comes out right where those wrap.
class PairSums {
 public:
  ZAVRI_INLINE void add(U8 v) {
    pairs_ = (U32)vpadalq_u16((uint32x4_t)pairs_, (uint16x8_t)v);
    odd_ = (U32)vpadalq_u16((uint32x4_t)odd_, (uint16x8_t)((U16)v >> 8));
  }

  ZAVRI_INLINE PairTotals totals() const {
#ifdef __aarch64__
    const uint32_t pairs = vaddvq_u32((uint32x4_t)pairs_);
    const uint32_t odd = vaddvq_u32((uint32x4_t)odd_);
#else
    const auto halves = [](U32 sums) {
      return vpadd_u32(vget_low_u32((uint32x4_t)sums), vget_high_u32((uint32x4_t)sums));
    };
    const uint32x2_t both = vpadd_u32(halves(pairs_), halves(odd_));
    const uint32_t pairs = vget_lane_u32(both, 0);
    const uint32_t odd = vget_lane_u32(both, 1);
#endif
    return {pairs - (odd << 8), odd};
  }

 private:
  U32 pairs_{};
  U32 odd_{};
};

// Returns the same count of bits for each pair of a mask, in order, as one core register holds.
ZAVRI_INLINE size_t pair_bits(U8 mask) {
  const uint8x8_t bytes = vmovn_u16((uint16x8_t)mask);
#ifdef __aarch64__
  return vget_lane_u64(vreinterpret_u64_u8(bytes), 0);
#else
  const uint8x8_t nibbles = vshrn_n_u16(vreinterpretq_u16_u8(vcombine_u8(bytes, bytes)), 4);
  return vget_lane_u32(vreinterpret_u32_u8(nibbles), 0);
#endif
}

ZAVRI_INLINE bool all_set(U8 mask) { return ~pair_bits(mask) == 0; }

ZAVRI_INLINE size_t first_clear(U8 mask) {
  constexpr size_t kBitsOfPair = 8 * sizeof(size_t) / kLanesOf<U16>;
  return static_cast<size_t>(__builtin_ctzl(~pair_bits(mask))) / kBitsOfPair * 2;
}

}  // namespace
}  // namespace zavri
