#include "denoise3d/chroma_runs.h"

#include <cstdlib>

#include "simd/vec.h"

namespace zavri {
namespace {

constexpr size_t kPair = 2;  // bytes

bool close_to(const uint8_t* pair, int u, int v) {
  return std::abs(pair[0] - u) < kRunTolerance && std::abs(pair[1] - v) < kRunTolerance;
}

// Returns a mask of the pairs that are close to the anchor.
ZAVRI_INLINE U8 close_to(U8 pairs, U8 anchor) {
  return (U8)((U16)saturating_sub(abs_diff(pairs, anchor), splat<U8>(kRunTolerance - 1)) == 0);
}

uint8_t rounded_mean(uint64_t sum, size_t count) {
  return static_cast<uint8_t>((sum + count / 2) / count);
}

// Applies the rule along `pairs` pairs that stand `step` bytes apart. It is not inlined, because it
// would take registers from the vector form.
__attribute__((noinline)) void smooth_line(uint8_t* line, size_t step, size_t pairs) {
  for (size_t first = 0; first < pairs;) {
    const int u = line[first * step];
    const int v = line[first * step + 1];
    uint64_t sum_u = 0;
    uint64_t sum_v = 0;
    size_t end = first;
    for (; end < pairs && close_to(line + end * step, u, v); ++end) {
      sum_u += line[end * step];
      sum_v += line[end * step + 1];
    }
    if (end - first >= 2) {
      const uint8_t mean_u = rounded_mean(sum_u, end - first);
      const uint8_t mean_v = rounded_mean(sum_v, end - first);
      for (size_t i = first; i < end; ++i) {
        line[i * step] = mean_u;
        line[i * step + 1] = mean_v;
      }
    }
    first = end;
  }
}

// of[n] is ceil(2^32 / n), and x * of[n] >> 32 is x / n rounded down, exactly, for x < 256 * n.
// With e = n * of[n] - 2^32, which is below n, the product exceeds 2^32 * (x / n) by x * e / n <
// 256 * n. The next integer is at least 2^32 * (1 / n) away, which is more. For n = 3, of[3] is
// 1431655766, and 767 times that is 255.67 * 2^32: the quotient is 255.
struct Reciprocals {
  uint32_t of[256];
  constexpr Reciprocals() : of{} {
    constexpr uint64_t kOne = uint64_t{1} << 32;
    for (uint32_t n = 2; n < 256; ++n) of[n] = static_cast<uint32_t>((kOne + n - 1) / n);
  }
};
constexpr Reciprocals kReciprocals;

// The sum and half the count fit 32 bits together.
uint8_t quick_mean(uint32_t sum, uint32_t count) {
  if (count >= 256) return rounded_mean(sum, count);
  return static_cast<uint8_t>(uint64_t{sum + count / 2} * kReciprocals.of[count] >> 32);
}

// A vector loaded from bytes + kVectorBytes - n has its first n bytes set.
constexpr struct PrefixMask {
  uint8_t bytes[2 * kVectorBytes];
  constexpr PrefixMask() : bytes{} {
    for (size_t i = 0; i < kVectorBytes; ++i) bytes[i] = 0xff;
  }
} kPrefix;

// Writes pairs to to[0, bytes) by two stores of sizeof(Word) bytes, which may overlap.
template <class Word>
ZAVRI_INLINE void fill_two(uint8_t* to, size_t bytes, U8 pairs) {
  memcpy(to, &pairs, sizeof(Word));
  memcpy(to + bytes - sizeof(Word), &pairs, sizeof(Word));
}

// Writes the one pair of which `pairs` consists all over to[0, bytes), at least twice. Stores
// overlap where a vector or word does not divide `bytes`, so that none reaches beyond.
ZAVRI_INLINE void fill(uint8_t* to, size_t bytes, U8 pairs) {
  if (bytes >= kVectorBytes) {
    uint8_t* const last = to + bytes - kVectorBytes;
    for (; bytes >= kVectorBytes; bytes -= kVectorBytes) store_next(&to, pairs);
    store(last, pairs);
  } else if (bytes >= 16) {
    fill_two<uint8_t[16]>(to, bytes, pairs);
  } else if (bytes >= 8) {
    fill_two<uint64_t>(to, bytes, pairs);
  } else if (bytes >= 4) {
    fill_two<uint32_t>(to, bytes, pairs);
  }
}

// A pair adds at most 255 to a run's sum of U or of V: in a sequence up to this length, in bytes,
// both stay below 2^32, which PairSums takes, even with half the count of pairs added.
constexpr size_t kLongestSequence = size_t{1} << 25;

// Smooths the run that begins at plane + first and returns where the next one begins. At least one
// vector lies in [first, end).
ZAVRI_INLINE size_t smooth_run(uint8_t* plane, size_t first, size_t end) {
  U8 pairs = load(plane + first);
  const U8 anchor = splat_first_pair(pairs);
  U8 close = close_to(pairs, anchor);
  PairSums sums;
  size_t at = first;
  while (all_set(close)) {
    sums.add(pairs);
    at += kVectorBytes;
    if (at + kVectorBytes > end) break;
    pairs = load(plane + at);
    close = close_to(pairs, anchor);
  }
  uint32_t tail_u = 0;
  uint32_t tail_v = 0;
  if (at + kVectorBytes <= end) {
    const size_t taken = first_clear(close);
    sums.add(pairs & load(kPrefix.bytes + kVectorBytes - taken));
    at += taken;
  } else {
    const int u = plane[first];
    const int v = plane[first + 1];
    for (; at < end && close_to(plane + at, u, v); at += kPair) {
      tail_u += plane[at];
      tail_v += plane[at + 1];
    }
  }
  const auto count = static_cast<uint32_t>((at - first) / kPair);
  if (count >= 2) {
    const PairTotals sum = sums.totals();
    const unsigned mean_u = quick_mean(sum.even + tail_u, count);
    const unsigned mean_v = quick_mean(sum.odd + tail_v, count);
    fill(plane + first, at - first, (U8)splat<U16>(static_cast<uint16_t>(mean_u | mean_v << 8)));
  }
  return at;
}

void smooth_sequence(uint8_t* plane, size_t bytes) {
  const size_t end = (bytes + 1) & ~size_t{1};
  size_t at = 0;
  if (kVectorized && bytes <= kLongestSequence) {
    while (at + kVectorBytes <= end) at = smooth_run(plane, at, end);
  }
  smooth_line(plane + at, kPair, (end - at) / kPair);
}

// Holds the runs that lead down the columns of one vector. The sums wrap, but by how much one
// exceeds anchor * count stays right, because it is small: each pair adds less than kRunTolerance
// to it or takes as little from it, which with the rounding term fits 16 bits for kTallestColumn
// rows. 1000 samples of 201 behind an anchor of 200 wrap to a sum of 4392 and 200 * 1000 wraps to
// 3392: 1000 is the excess, and the mean is 201.
struct ColumnRuns {
  U8 anchor;
  U16 sum_u;
  U16 sum_v;
  U16 count;

  ZAVRI_INLINE void start(U8 pairs) {
    *this = ColumnRuns{};
    add(pairs, U8{});
  }

  // A run goes on where the mask is set and starts anew elsewhere.
  ZAVRI_INLINE void add(U8 pairs, U8 mask) {
    const U16 goes_on = (U16)mask;
    anchor = select(mask, anchor, pairs);
    sum_u = (sum_u & goes_on) + ((U16)pairs & splat<U16>(0xff));
    sum_v = (sum_v & goes_on) + ((U16)pairs >> 8);
    count = (count & goes_on) + splat<U16>(1);
  }

  ZAVRI_INLINE U8 mean() const {
    const U16 u = (U16)anchor & splat<U16>(0xff);
    const U16 v = (U16)anchor >> 8;
    return (U8)(mean(sum_u, u) | mean(sum_v, v) << 8);
  }

 private:
  // The excess over anchor * count may be negative: floor(x / n) is then ~floor(~x / n), as for
  // -7 / 2 ~(6 / 2) = ~3 = -4. The excess is within kRunTolerance * count, which makes the quotient
  // a small one.
  ZAVRI_INLINE U16 mean(U16 sum, U16 anchor_sample) const {
    static_assert(kRunTolerance <= 32);
    const U16 excess = sum - anchor_sample * count + (count >> 1);
    const U16 sign = (U16)((S16)excess >> 15);
    return anchor_sample + (small_quotient(excess ^ sign, count) ^ sign);
  }
};
constexpr size_t kTallestColumn = 1680;
static_assert((kRunTolerance - 1) * kTallestColumn + kTallestColumn / 2 <= 32767);

// Smooths the columns of kVectors vectors side by side. On the way down the rows a run's mean is
// written to its last row, on the way up it is copied to the rows above. Two vectors share a row's
// cache line and hide each other's latencies.
template <size_t kVectors>
void smooth_column_block(uint8_t* top, size_t rows, size_t stride) {
  U8 goes_on[kTallestColumn][kVectors];  // set in the pairs whose run goes on in the next row
  ColumnRuns runs[kVectors];
  for (size_t i = 0; i < kVectors; ++i) runs[i].start(load(top + i * kVectorBytes));
  uint8_t* row = top;
  for (size_t r = 0; r + 1 < rows; ++r, row += stride) {
    for (size_t i = 0; i < kVectors; ++i) {
      uint8_t* const at = row + i * kVectorBytes;
      const U8 below = load(at + stride);
      const U8 close = close_to(below, runs[i].anchor);
      // Compilers would begin with the means of an expected break before it is known.
      if (__builtin_expect(!all_set(close), false)) {
        store(at, select(close, load(at), runs[i].mean()));
      }
      goes_on[r][i] = close;
      runs[i].add(below, close);
    }
  }
  U8 current[kVectors];
  for (size_t i = 0; i < kVectors; ++i) {
    current[i] = runs[i].mean();
    store(row + i * kVectorBytes, current[i]);
  }
  for (size_t r = rows - 1; r > 0; --r) {
    row -= stride;
    for (size_t i = 0; i < kVectors; ++i) {
      uint8_t* const at = row + i * kVectorBytes;
      current[i] = select(goes_on[r - 1][i], current[i], load(at));
      store(at, current[i]);
    }
  }
}

// Smooths the columns from x on in blocks of kVectors vectors and returns the first column that is
// left. With a stride below a block's width its rows would overlap.
template <size_t kVectors>
size_t smooth_column_blocks(uint8_t* plane, size_t x, size_t width, size_t rows, size_t stride) {
  constexpr size_t kBlock = kVectors * kVectorBytes;
  if (rows > kTallestColumn || stride < kBlock) return x;
  for (; x + kBlock <= width; x += kBlock) {
    smooth_column_block<kVectors>(plane + x, rows, stride);
  }
  return x;
}

void smooth_columns(uint8_t* plane, size_t width, size_t rows, size_t stride) {
  size_t x = 0;
  if (kVectorized) {
    if (kRoomForTwoStates) x = smooth_column_blocks<2>(plane, x, width, rows, stride);
    x = smooth_column_blocks<1>(plane, x, width, rows, stride);
  }
  for (; x < width; x += kPair) smooth_line(plane + x, stride, rows);
}

}  // namespace

const ChromaRunKernels& chroma_run_kernels(ThisBuild) {
  static constexpr ChromaRunKernels kKernels = {smooth_sequence, smooth_columns};
  return kKernels;
}

}  // namespace zavri
