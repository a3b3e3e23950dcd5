#pragma once

// This file, which simd/vec.h includes, has its operations without intrinsics. Targets take over
// the bodies that they do not replace.

namespace zavri {
namespace {
namespace generic {

template <class Byte>
ZAVRI_INLINE U8 load_next(Byte** from) {
  const U8 v = load(*from);
  *from += kVectorBytes;
  return v;
}

ZAVRI_INLINE void store_next(uint8_t** to, U8 v) {
  store(*to, v);
  *to += kVectorBytes;
}

constexpr bool kRoomForTwoStates = true;

ZAVRI_INLINE void fill_bytes(uint8_t* to, uint8_t byte, size_t n) { memset(to, byte, n); }

ZAVRI_INLINE U8 load_blocks(const uint8_t* from, ptrdiff_t distance) {
  U8 v;
  for (size_t i = 0; i < kBlocks; ++i) {
    memcpy(reinterpret_cast<uint8_t*>(&v) + i * kBlockBytes,
           from + static_cast<ptrdiff_t>(i) * distance, kBlockBytes);
  }
  return v;
}

ZAVRI_INLINE void store_blocks(uint8_t* to, ptrdiff_t distance, U8 v) {
  for (size_t i = 0; i < kBlocks; ++i) {
    memcpy(to + static_cast<ptrdiff_t>(i) * distance,
           reinterpret_cast<const uint8_t*>(&v) + i * kBlockBytes, kBlockBytes);
  }
}

template <class V, size_t... kLane>
ZAVRI_INLINE Deinterleaved<V> deinterleave(V a, V b, std::index_sequence<kLane...>) {
  return {__builtin_shufflevector(a, b, static_cast<int>(2 * kLane)...),
          __builtin_shufflevector(a, b, static_cast<int>(2 * kLane + 1)...)};
}

template <class V>
ZAVRI_INLINE Deinterleaved<V> load_deinterleaved(const uint8_t* from) {
  return deinterleave(load<V>(from), load<V>(from + kVectorBytes),
                      std::make_index_sequence<kLanesOf<V>>());
}

template <size_t kFrom, size_t... kLane>
ZAVRI_INLINE U8 interleave(U8 a, U8 b, std::index_sequence<kLane...>) {
  constexpr size_t kOf[] = {0, kVectorBytes};  // where a and b begin
  return __builtin_shufflevector(a, b, static_cast<int>(kFrom + kLane / 2 + kOf[kLane % 2])...);
}

ZAVRI_INLINE void store_interleaved(uint8_t* to, U8 a, U8 b) {
  constexpr auto kLanes = std::make_index_sequence<kVectorBytes>();
  store(to, interleave<0>(a, b, kLanes));
  store(to + kVectorBytes, interleave<kVectorBytes / 2>(a, b, kLanes));
}

template <size_t... kLane>
ZAVRI_INLINE U8 splat_lane_0(U16 v, std::index_sequence<kLane...>) {
  return (U8)__builtin_shufflevector(v, v, static_cast<int>(0 * kLane)...);
}

ZAVRI_INLINE U8 splat_first_pair(U8 v) {
  return splat_lane_0((U16)v, std::make_index_sequence<kLanesOf<U16>>());
}

ZAVRI_INLINE U8 duplicate_even(U8 v) {
  const U16 even = (U16)v << 8;
  return (U8)(even | even >> 8);
}

ZAVRI_INLINE void split_cells(const U8* vectors, U8* even, U8* odd) {
  for (size_t i = 0; i < kVectorBytes; ++i) {
    const U8& from = vectors[i % kBlockBytes / 4];
    const size_t cell = i / kBlockBytes * kBlockBytes + i % 4 * 4;
    (*even)[i] = from[cell];
    (*odd)[i] = from[cell + 1];
  }
}

ZAVRI_INLINE Wide widen(U8 v) { return zavri::widen(v, U8{}); }

template <size_t... kLane>
ZAVRI_INLINE U8 narrow(Wide wide, std::index_sequence<kLane...>) {
  constexpr size_t kHalf = kBlockBytes / 2;
  return __builtin_shufflevector(
      (U8)wide.lower, (U8)wide.upper,
      static_cast<int>(kLane / kHalf % 2 * kVectorBytes + kLane / kBlockBytes * kBlockBytes +
                       kLane % kHalf * 2)...);
}
ZAVRI_INLINE U8 narrow(Wide wide) { return narrow(wide, std::make_index_sequence<kVectorBytes>()); }

ZAVRI_INLINE S8 narrow_signed(Wide wide) { return (S8)narrow(wide); }

ZAVRI_INLINE U8 narrow(U16 a, U16 b) {
  return deinterleave((U8)a, (U8)b, std::make_index_sequence<kVectorBytes>()).even;
}

ZAVRI_INLINE U8 avg_round_up(U8 a, U8 b) { return (a | b) - ((a ^ b) >> 1); }

ZAVRI_INLINE U8 avg_round_down(U8 a, U8 b) { return (a & b) + ((a ^ b) >> 1); }

// Computes a + (weight * (b - a) >> 7). The product is within 128 * 255, which a signed lane of 16
// bits holds, and 128 * a, which is taken out of the shift, leaves no rest: both forms round alike.
ZAVRI_INLINE U8 weighted_mean(U8 a, U8 b, U8 weight) {
  const auto moved = [](U16 a16, U16 b16, U16 weight16) {
    return (U16)((S16)(weight16 * (b16 - a16)) >> 7);
  };
  const U16 low = splat<U16>(0xff);
  const U16 even = moved((U16)a & low, (U16)b & low, (U16)weight & low);
  const U16 odd = moved((U16)a >> 8, (U16)b >> 8, (U16)weight >> 8);
  return a + (U8)((even & low) | odd << 8);
}

ZAVRI_INLINE U8 saturating_sub(U8 a, U8 b) { return (a - b) & (U8)(a > b); }

ZAVRI_INLINE S8 saturating_sub(S8 a, S8 b) {
  const U8 wrapped = (U8)a - (U8)b;
  // Only operands of opposite signs overflow, and then the sign is not that of a.
  const U8 overflows = (U8)((S8)(((U8)a ^ (U8)b) & ((U8)a ^ wrapped)) >> 7);
  const U8 extreme = (U8)(a >> 7) ^ 0x7f;
  return (S8)((overflows & extreme) | (~overflows & wrapped));
}

ZAVRI_INLINE U8 abs(S8 a) {
  const U8 sign = (U8)(a >> 7);
  return ((U8)a ^ sign) - sign;
}

ZAVRI_INLINE U8 abs_diff(U8 a, U8 b) {
  const U8 negative = (U8)(a < b);
  return ((a - b) ^ negative) - negative;
}

ZAVRI_INLINE U8 at_most(U8 a, U8 b) { return (U8)(a <= b); }

ZAVRI_INLINE U8 max(U8 a, U8 b) { return b + saturating_sub(a, b); }

ZAVRI_INLINE U32 min(U32 a, U32 b) { return a < b ? a : b; }

ZAVRI_INLINE U8 select(U8 mask, U8 a, U8 b) { return (mask & a) | (~mask & b); }

ZAVRI_INLINE U16 mul_high(U16 a, U16 b) {
  const U32 even = ((U32)a & 0xffff) * ((U32)b & 0xffff);
  const U32 odd = ((U32)a >> 16) * ((U32)b >> 16);
  return (U16)(even >> 16 | (odd & 0xffff0000));
}

ZAVRI_INLINE S16 mul_high_rounded(S16 a, S16 b) {
  const auto even = [](S16 v) { return (S32)((U32)v << 16) >> 16; };
  const auto odd = [](S16 v) { return (S32)v >> 16; };
  const S32 low = (even(a) * even(b) + 0x4000) >> 15;
  const S32 high = (odd(a) * odd(b) + 0x4000) >> 15;
  return (S16)(((U32)low & 0xffff) | (U32)high << 16);
}

template <int kLeast, int kMost>
struct ReciprocalTable {
  int16_t of[kMost + 1];

  constexpr ReciprocalTable() : of{} {
    for (int w = kLeast; w <= kMost; ++w) {
      of[w] = static_cast<int16_t>(((1 << 15) + w / 2) / w);
    }
  }
};

template <int kLeast, int kMost>
ZAVRI_INLINE S16 reciprocals(U16 w) {
  static constexpr ReciprocalTable<kLeast, kMost> kTable;
  S16 r;
  for (size_t i = 0; i < kLanesOf<S16>; ++i) r[i] = kTable.of[w[i]];
  return r;
}

// This is long division, from bit 4 of the quotient down to bit 0: where b << bit does not fit into
// the rest, their difference wraps, which sets its top bit and keeps it from being the smaller one.
// The top bits of the five differences are the quotient's complement. For 50 / 7: 112 and 56 do not
// fit, 28 does and leaves 22, 14 leaves 8, 7 leaves 1; the bits are 11000, that is 24, and
// 31 - 24 = 7.
ZAVRI_INLINE U16 small_quotient(U16 a, U16 b) {
  U16 rest = a;
  U16 complement{};
  for (int bit = 4; bit >= 0; --bit) {
    const U16 less = rest - (b << bit);
    complement = complement + complement + (less >> 15);
    rest = less < rest ? less : rest;
  }
  return 31 - complement;
}

template <size_t kEntries>
class ByteTable {
 public:
  ZAVRI_INLINE explicit ByteTable(const uint8_t* entries) { memcpy(entries_, entries, kEntries); }

  ZAVRI_INLINE U8 at(U8 index) const {
    U8 found{};
    for (size_t i = 0; i < kVectorBytes; ++i) {
      if (index[i] < kEntries) found[i] = entries_[index[i]];
    }
    return found;
  }

 private:
  uint8_t entries_[kEntries];
};

ZAVRI_INLINE S16 multiply_add_pairs(U8 a, S8 b) {
  const U16 even = ((U16)a & 0xff) * (U16)((S16)((U16)b << 8) >> 8);
  const U16 odd = ((U16)a >> 8) * (U16)((S16)b >> 8);
  return (S16)(even + odd);
}

ZAVRI_INLINE Wide add_products(Wide sums, U8 w1, S8 d1, U8 w2, S8 d2) {
  const auto add = [&sums](U8 w, S8 d) {
    const Wide weights = widen(w);
    const Wide differences = zavri::widen(U8{}, (U8)d);  // these are 256 times as large
    sums.lower += weights.lower * (U16)((S16)differences.lower >> 8);
    sums.upper += weights.upper * (U16)((S16)differences.upper >> 8);
  };
  add(w1, d1);
  add(w2, d2);
  return sums;
}

ZAVRI_INLINE Wide add_weights(Wide sums, U8 a, U8 b) {
  const Wide both = widen(a + b);
  return {sums.lower + both.lower, sums.upper + both.upper};
}

// Lanes of 16 bits gather bytes before lanes of 32 bits do. Each takes up to 2 * 255 from a vector,
// so that 128 of them, 65280 in sum, fit.
class ByteSums {
 public:
  static constexpr size_t kMostAdds = 128;

  ZAVRI_INLINE void add(U8 v) { gathered_ += ((U16)v & 0xff) + ((U16)v >> 8); }

  ZAVRI_INLINE void add_abs_diff(U8 a, U8 b) { add(abs_diff(a, b)); }

  ZAVRI_INLINE void add(const ByteSums& other) { sums_ += other.sums_; }

  ZAVRI_INLINE void settle() {
    sums_ += ((U32)gathered_ & 0xffff) + ((U32)gathered_ >> 16);
    gathered_ = U16{};
  }

  ZAVRI_INLINE uint32_t total() const {
    uint32_t sum = 0;
    for (size_t i = 0; i < kLanesOf<U32>; ++i) sum += sums_[i];
    return sum;
  }

 private:
  U16 gathered_{};
  U32 sums_{};
};

class PairSums {
 public:
  ZAVRI_INLINE void add(U8 v) {
    const U16 even = (U16)v & 0xff;
    const U16 odd = (U16)v >> 8;
    even_ += ((U32)even & 0xffff) + ((U32)even >> 16);
    odd_ += ((U32)odd & 0xffff) + ((U32)odd >> 16);
  }

  ZAVRI_INLINE PairTotals totals() const {
    PairTotals totals{};
    for (size_t i = 0; i < kLanesOf<U32>; ++i) {
      totals.even += even_[i];
      totals.odd += odd_[i];
    }
    return totals;
  }

 private:
  U32 even_{};
  U32 odd_{};
};

ZAVRI_INLINE bool all_set(U8 mask) {
  uint64_t bits = ~uint64_t{0};
  for (size_t i = 0; i < kLanesOf<U64>; ++i) bits &= ((U64)mask)[i];
  return ~bits == 0;
}

ZAVRI_INLINE size_t first_clear(U8 mask) {
  size_t i = 0;
  while (~((U64)mask)[i] == 0) ++i;
  return i * 8 + static_cast<size_t>(__builtin_ctzll(~((U64)mask)[i])) / 8;
}

}  // namespace generic
}  // namespace
}  // namespace zavri
