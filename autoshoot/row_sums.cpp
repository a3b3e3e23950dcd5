#include "autoshoot/row_sums.h"

#include <cstdlib>

#ifndef ZAVRI_BUILD_PLAIN
#include "simd/vec.h"
#endif

namespace zavri {
namespace {

// All kernels sum |row[i] - reference[i]|; they differ in the reference.

struct Zero {
  int at(size_t) const { return 0; }
};

struct Mean {
  uint8_t mean;
  int at(size_t) const { return mean; }
};

struct OtherRow {
  const uint8_t* other;
  int at(size_t i) const { return other[i]; }
};

// The rule.
template <class Reference>
uint32_t sum_plain(const uint8_t* row, size_t width, Reference reference) {
  uint32_t sum = 0;
  for (size_t i = 0; i < width; ++i) {
    sum += static_cast<uint32_t>(std::abs(row[i] - reference.at(i)));
  }
  return sum;
}

#ifdef ZAVRI_BUILD_PLAIN

template <class Reference>
uint32_t sum_row(const uint8_t* row, size_t width, Reference reference) {
  return sum_plain(row, width, reference);
}

#else

ZAVRI_INLINE V8 reference_at(Zero, size_t) { return V8{}; }
ZAVRI_INLINE V8 reference_at(Mean reference, size_t) { return splat8(reference.mean); }
ZAVRI_INLINE V8 reference_at(OtherRow reference, size_t i) { return load(reference.other + i); }

// Loaded from kSuffix.bytes + n: the last n bytes set.
constexpr struct SuffixMask {
  uint8_t bytes[2 * kVectorBytes];
  constexpr SuffixMask() : bytes{} {
    for (size_t i = kVectorBytes; i < 2 * kVectorBytes; ++i) bytes[i] = 0xff;
  }
} kSuffix;

// Lanes may wrap: they and their sum count modulo 2^32, as the rule does. Two vectors a step: with
// one the loop's own instructions show.
template <class Reference>
uint32_t sum_row(const uint8_t* row, size_t width, Reference reference) {
  if (width < kVectorBytes) return sum_plain(row, width, reference);
  V32 sums{};
  V32 more_sums{};
  size_t i = 0;
  for (; i + 2 * kVectorBytes <= width; i += 2 * kVectorBytes) {
    const size_t next = i + kVectorBytes;
    sums = add_absdiff(sums, load(row + i), reference_at(reference, i));
    more_sums = add_absdiff(more_sums, load(row + next), reference_at(reference, next));
  }
  if (i + kVectorBytes <= width) {
    sums = add_absdiff(sums, load(row + i), reference_at(reference, i));
    i += kVectorBytes;
  }
  // The rest of the row, in a vector that reaches back over what has been added.
  const size_t last = width - kVectorBytes;
  const V8 rest = load(kSuffix.bytes + (width - i));
  sums = add_absdiff(sums, load(row + last) & rest, reference_at(reference, last) & rest);
  return totals(sums + more_sums, V32{}).a;
}

#endif

uint32_t samples(const uint8_t* row, size_t width) { return sum_row(row, width, Zero{}); }

uint32_t differences(const uint8_t* row, const uint8_t* other, size_t width) {
  return sum_row(row, width, OtherRow{other});
}

uint32_t deviations(const uint8_t* row, size_t width, uint8_t mean) {
  return sum_row(row, width, Mean{mean});
}

}  // namespace

const RowSumKernels& row_sum_kernels(ThisBuild) {
  static constexpr RowSumKernels kKernels = {samples, differences, deviations};
  return kKernels;
}

}  // namespace zavri
