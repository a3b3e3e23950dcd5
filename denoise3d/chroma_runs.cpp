#include "denoise3d/chroma_runs.h"

#include <cstdlib>

#ifndef ZAVRI_BUILD_PLAIN
#include "simd/vec.h"
#endif

namespace zavri {
namespace {

bool close_to(const uint8_t* pair, int u, int v) {
  return std::abs(pair[0] - u) < kRunTolerance && std::abs(pair[1] - v) < kRunTolerance;
}

uint8_t rounded_mean(uint64_t sum, size_t count) {
  return static_cast<uint8_t>((sum + count / 2) / count);
}

// The rule, along `pairs` pairs that stand `step` bytes apart.
void smooth_line(uint8_t* line, size_t step, size_t pairs) {
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

constexpr size_t kPair = 2;  // bytes

void smooth_sequence_plain(uint8_t* plane, size_t bytes) {
  smooth_line(plane, kPair, (bytes + 1) / kPair);
}

void smooth_columns_plain(uint8_t* plane, size_t from, size_t width, size_t rows, size_t stride) {
  for (size_t x = from; x < width; x += kPair) smooth_line(plane + x, stride, rows);
}

#ifdef ZAVRI_BUILD_PLAIN

void smooth_sequence(uint8_t* plane, size_t bytes) { smooth_sequence_plain(plane, bytes); }

void smooth_columns(uint8_t* plane, size_t width, size_t rows, size_t stride) {
  smooth_columns_plain(plane, 0, width, rows, stride);
}

#else

// All bits set in the pairs that are close to the anchor.
ZAVRI_INLINE V8 close_to(V8 pairs, V8 anchor) {
  return (V8)((V16)above(absdiff(pairs, anchor), splat8(kRunTolerance - 1)) == 0);
}

// ceil(2^32 / n): the upper half of x * kReciprocals.of[n] is x / n, exactly, for x < 256 n. With
// e = n * ceil(2^32 / n) - 2^32 < n the product is too large by x * e / n < 256 n < 2^32 / n.
struct Reciprocals {
  uint32_t of[256];
  constexpr Reciprocals() : of{} {
    constexpr uint64_t kOne = uint64_t{1} << 32;
    for (uint32_t n = 2; n < 256; ++n) of[n] = static_cast<uint32_t>((kOne + n - 1) / n);
  }
};
constexpr Reciprocals kReciprocals;

uint8_t quick_mean(uint64_t sum, size_t count) {
  if (count >= 256) return rounded_mean(sum, count);
  return static_cast<uint8_t>((sum + count / 2) * kReciprocals.of[count] >> 32);
}

// Loaded from kPrefix + kVectorBytes - n: the first n bytes set.
constexpr struct PrefixMask {
  uint8_t bytes[2 * kVectorBytes];
  constexpr PrefixMask() : bytes{} {
    for (size_t i = 0; i < kVectorBytes; ++i) bytes[i] = 0xff;
  }
} kPrefix;

// Writes the pair over to[0, bytes); stores overlap so that none leaves the run.
template <class Word>
ZAVRI_INLINE void fill_two(uint8_t* to, size_t bytes, V8 pairs) {
  memcpy(to, &pairs, sizeof(Word));
  memcpy(to + bytes - sizeof(Word), &pairs, sizeof(Word));
}

ZAVRI_INLINE void fill(uint8_t* to, size_t bytes, V8 pairs) {
  if (bytes >= kVectorBytes) {
    for (size_t i = 0; i + kVectorBytes <= bytes; i += kVectorBytes) store(to + i, pairs);
    store(to + bytes - kVectorBytes, pairs);
  } else if (bytes >= 16) {
    fill_two<uint8_t[16]>(to, bytes, pairs);
  } else if (bytes >= 8) {
    fill_two<uint64_t>(to, bytes, pairs);
  } else if (bytes >= 4) {
    fill_two<uint32_t>(to, bytes, pairs);
  }
}

// Sums of a run's bytes.
struct RunSums {
  V32 lanes_both{};
  V32 lanes_v{};

  ZAVRI_INLINE void add(V8 pairs) {
    lanes_both = add_up(lanes_both, pairs);
    lanes_v = add_up(lanes_v, (V8)((V16)pairs >> 8));
  }
};
// A vector adds at most 8 * 255 to a lane, a pair 255 to a sum: both stay below 2^32.
constexpr size_t kLongestSequence = size_t{1} << 25;

// Smooths the run that begins at plane + first; returns where the next one does. At least one
// vector lies before `end`.
ZAVRI_INLINE size_t smooth_run(uint8_t* plane, size_t first, size_t end) {
  V8 pairs = load(plane + first);
  const V8 anchor = splat_first_pair(pairs);
  V8 close = close_to(pairs, anchor);
  RunSums sums;
  size_t at = first;
  while (all(close)) {
    sums.add(pairs);
    at += kVectorBytes;
    if (at + kVectorBytes > end) break;
    pairs = load(plane + at);
    close = close_to(pairs, anchor);
  }
  uint64_t tail_u = 0;
  uint64_t tail_v = 0;
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
  const size_t count = (at - first) / kPair;
  if (count >= 2) {
    const Totals sum = totals(sums.lanes_both - sums.lanes_v, sums.lanes_v);
    const unsigned mean_u = quick_mean(sum.a + tail_u, count);
    const unsigned mean_v = quick_mean(sum.b + tail_v, count);
    fill(plane + first, at - first, (V8)splat16(mean_u | mean_v << 8));
  }
  return at;
}

void smooth_sequence(uint8_t* plane, size_t bytes) {
  if (bytes > kLongestSequence) return smooth_sequence_plain(plane, bytes);
  const size_t end = (bytes + 1) & ~size_t{1};
  size_t at = 0;
  while (at + kVectorBytes <= end) at = smooth_run(plane, at, end);
  smooth_line(plane + at, kPair, (end - at) / kPair);
}

// floor(sum / count) in signed 16-bit lanes, for |sum| < 20 * count <= 32767.
ZAVRI_INLINE V16 small_quotient(V16 sum, V16 count) {
  const V16 sign = (V16)((S16)sum >> 15);
  V16 rest = sum ^ sign;  // floor(x / n) = ~floor(~x / n)
  V16 missed{};
  for (int bit = 4; bit >= 0; --bit) {
    const V16 less = rest - (count << bit);
    missed += missed + (less >> 15);
    rest = less < rest ? less : rest;
  }
  return (splat16(31) - missed) ^ sign;
}

// The runs that lead down the columns of one vector. Sums wrap, but their difference from anchor *
// count is small: each pair adds less than kRunTolerance to it, which with the rounding term fits
// 16 bits for kTallestColumn rows.
struct ColumnRuns {
  V8 anchor;
  V16 sum_u;
  V16 sum_v;
  V16 count;

  ZAVRI_INLINE void start(V8 pairs) {
    *this = ColumnRuns{};
    add(pairs, V8{});
  }

  // A run goes on where the mask is set and starts anew elsewhere.
  ZAVRI_INLINE void add(V8 pairs, V8 mask) {
    const V16 goes_on = (V16)mask;
    anchor = select(mask, anchor, pairs);
    sum_u = (sum_u & goes_on) + ((V16)pairs & splat16(0xff));
    sum_v = (sum_v & goes_on) + ((V16)pairs >> 8);
    count = (count & goes_on) + splat16(1);
  }

  ZAVRI_INLINE V8 mean() const {
    const V16 half = count >> 1;
    const V16 u = (V16)anchor & splat16(0xff);
    const V16 v = (V16)anchor >> 8;
    const V16 mean_u = u + small_quotient(sum_u - u * count + half, count);
    const V16 mean_v = v + small_quotient(sum_v - v * count + half, count);
    return (V8)(mean_u | mean_v << 8);
  }
};
constexpr size_t kTallestColumn = 1680;
static_assert((kRunTolerance - 1) * kTallestColumn + kTallestColumn / 2 <= 32767);

// Downwards a run's mean is left in its last row; upwards it is carried to the rows above. Two
// vectors side by side share a row's cache line and hide each other's latencies.
template <size_t kVectors>
void smooth_column_block(uint8_t* top, size_t rows, size_t stride) {
  V8 goes_on[kTallestColumn][kVectors];  // set in the pairs whose run goes on in the next row
  ColumnRuns runs[kVectors];
  for (size_t i = 0; i < kVectors; ++i) runs[i].start(load(top + i * kVectorBytes));
  uint8_t* row = top;
  for (size_t r = 0; r + 1 < rows; ++r, row += stride) {
    for (size_t i = 0; i < kVectors; ++i) {
      uint8_t* const at = row + i * kVectorBytes;
      const V8 below = load(at + stride);
      const V8 close = close_to(below, runs[i].anchor);
      if (!all(close)) store(at, select(close, load(at), runs[i].mean()));
      goes_on[r][i] = close;
      runs[i].add(below, close);
    }
  }
  V8 current[kVectors];
  for (size_t i = 0; i < kVectors; ++i) {
    current[i] = runs[i].mean();
    store(row + i * kVectorBytes, current[i]);
  }
  for (size_t r = rows - 1; r-- > 0;) {
    row -= stride;
    for (size_t i = 0; i < kVectors; ++i) {
      uint8_t* const at = row + i * kVectorBytes;
      current[i] = select(goes_on[r][i], current[i], load(at));
      store(at, current[i]);
    }
  }
}

// From column x on, as long as whole blocks fit; returns the first column that is left. A stride
// below a block's width would let its columns overlap.
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
  size_t x = smooth_column_blocks<2>(plane, 0, width, rows, stride);
  x = smooth_column_blocks<1>(plane, x, width, rows, stride);
  smooth_columns_plain(plane, x, width, rows, stride);
}

#endif

}  // namespace

const ChromaRunKernels& chroma_run_kernels(ThisBuild) {
  static constexpr ChromaRunKernels kKernels = {smooth_sequence, smooth_columns};
  return kKernels;
}

}  // namespace zavri
