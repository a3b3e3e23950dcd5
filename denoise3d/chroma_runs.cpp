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

// All bits set in the pairs that are too far from the anchor.
ZAVRI_INLINE V8 beyond(V8 pairs, V8 anchor) {
  return (V8)((V16)above(absdiff(pairs, anchor), splat8(kRunTolerance - 1)) != 0);
}

// ceil(2^32 / n): the upper half of x * kReciprocal[n] is x / n, exactly, for x < 256 n. With
// e = n * ceil(2^32 / n) - 2^32 < n the product is too large by x * e / n < 256 n < 2^32 / n.
struct Reciprocals {
  uint32_t of[256];
  constexpr Reciprocals() : of{} {
    for (uint32_t n = 2; n < 256; ++n)
      of[n] = static_cast<uint32_t>(((uint64_t{1} << 32) + n - 1) / n);
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

// A vector adds at most 4 * 255 to a lane, so sums stay below 2^32 for this many bytes.
constexpr size_t kLongestSequence = size_t{1} << 26;

void smooth_sequence(uint8_t* plane, size_t bytes) {
  if (bytes > kLongestSequence) return smooth_sequence_plain(plane, bytes);
  const size_t end = (bytes + 1) & ~size_t{1};
  size_t first_pair = 0;
  while (first_pair + kVectorBytes <= end) {
    const int u = plane[first_pair];
    const int v = plane[first_pair + 1];
    const V8 anchor = (V8)splat16(static_cast<unsigned>(u | v << 8));
    V32 lanes_u{};
    V32 lanes_v{};
    size_t run_end = first_pair;
    bool whole = true;
    for (; whole && run_end + kVectorBytes <= end;) {
      V8 pairs = load(plane + run_end);
      const V8 breaks = beyond(pairs, anchor);
      size_t taken = kVectorBytes;
      if (any(breaks)) {
        taken = first(breaks);
        pairs &= load(kPrefix.bytes + kVectorBytes - taken);
        whole = false;
      }
      lanes_u = add_up(lanes_u, (V8)((V16)pairs & splat16(0xff)));
      lanes_v = add_up(lanes_v, (V8)((V16)pairs >> 8));
      run_end += taken;
    }
    uint64_t sum_u = total(lanes_u);
    uint64_t sum_v = total(lanes_v);
    if (whole) {
      for (; run_end < end && close_to(plane + run_end, u, v); run_end += kPair) {
        sum_u += plane[run_end];
        sum_v += plane[run_end + 1];
      }
    }
    const size_t count = (run_end - first_pair) / kPair;
    if (count >= 2) {
      const unsigned mean_u = quick_mean(sum_u, count);
      const unsigned mean_v = quick_mean(sum_v, count);
      fill(plane + first_pair, run_end - first_pair, (V8)splat16(mean_u | mean_v << 8));
    }
    first_pair = run_end;
  }
  smooth_line(plane + first_pair, kPair, (end - first_pair) / kPair);
}

// floor(sum / count) in signed 16-bit lanes, for |sum| < 20 * count <= 32767.
ZAVRI_INLINE V16 small_quotient(V16 sum, V16 count) {
  const V16 sign = (V16)((S16)sum >> 15);
  V16 rest = sum ^ sign;  // floor(x / n) = ~floor(~x / n)
  V16 quotient{};
  for (int bit = 4; bit >= 0; --bit) {
    const V16 shifted = count << bit;
    const V16 fits = (V16)((S16)rest >= (S16)shifted);
    rest -= shifted & fits;
    quotient -= fits << bit;  // fits is -1
  }
  return quotient ^ sign;
}

// The runs that lead down the columns of one vector. Sums are of the differences from the anchor,
// each below kRunTolerance: with the rounding term they fit 16 bits for kTallestColumn rows.
struct ColumnRuns {
  V8 anchor;
  V16 sum_u{};
  V16 sum_v{};
  V16 count{};

  ZAVRI_INLINE void add(V8 pairs, V8 breaks) {
    const V16 goes_on = ~(V16)breaks;
    anchor = select(breaks, pairs, anchor);
    const V16 low = splat16(0xff);
    sum_u = (sum_u & goes_on) + ((V16)pairs & low) - ((V16)anchor & low);
    sum_v = (sum_v & goes_on) + ((V16)pairs >> 8) - ((V16)anchor >> 8);
    count = (count & goes_on) + splat16(1);
  }

  ZAVRI_INLINE V8 mean() const {
    const V16 half = count >> 1;
    const V16 u = ((V16)anchor & splat16(0xff)) + small_quotient(sum_u + half, count);
    const V16 v = ((V16)anchor >> 8) + small_quotient(sum_v + half, count);
    return (V8)(u | v << 8);
  }
};
constexpr size_t kTallestColumn = 1680;
static_assert((kRunTolerance - 1) * kTallestColumn + kTallestColumn / 2 <= 32767);

// Downwards a run's mean is left in its last row; upwards it is carried to the rows above.
void smooth_column_block(uint8_t* top, size_t rows, size_t stride) {
  V8 run_ends[kTallestColumn];  // set in the pairs that end a run in that row
  uint8_t* row = top;
  ColumnRuns runs{load(row)};
  runs.add(runs.anchor, V8{});
  for (size_t r = 0; r + 1 < rows; ++r, row += stride) {
    const V8 below = load(row + stride);
    const V8 breaks = beyond(below, runs.anchor);
    if (any(breaks)) store(row, select(breaks, runs.mean(), load(row)));
    run_ends[r] = breaks;
    runs.add(below, breaks);
  }
  V8 current = runs.mean();
  store(row, current);
  for (size_t r = rows - 1; r-- > 0;) {
    row -= stride;
    current = select(run_ends[r], load(row), current);
    store(row, current);
  }
}

void smooth_columns(uint8_t* plane, size_t width, size_t rows, size_t stride) {
  size_t x = 0;
  // A stride below the vector length would make columns of one block overlap.
  if (rows <= kTallestColumn && stride >= kVectorBytes) {
    for (; x + kVectorBytes <= width; x += kVectorBytes)
      smooth_column_block(plane + x, rows, stride);
  }
  smooth_columns_plain(plane, x, width, rows, stride);
}

#endif

}  // namespace

const ChromaRunKernels& chroma_run_kernels(ThisBuild) {
  static constexpr ChromaRunKernels kKernels = {smooth_sequence, smooth_columns};
  return kKernels;
}

}  // namespace zavri
