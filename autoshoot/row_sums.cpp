#include "autoshoot/row_sums.h"

#include <algorithm>
#include <cstdlib>

#include "simd/vec.h"

namespace zavri {
namespace {

// All kernels sum |row[i] - reference[i]|; they differ in the reference.

struct Zero {
  int at(size_t) const { return 0; }
  ZAVRI_INLINE U8 next() const { return U8{}; }
  ZAVRI_INLINE U8 before(size_t) const { return U8{}; }
  static ZAVRI_INLINE void add(ByteSums* sums, U8 samples, U8) { sums->add(samples); }
};

struct Differing {
  static ZAVRI_INLINE void add(ByteSums* sums, U8 samples, U8 references) {
    sums->add_abs_diff(samples, references);
  }
};

struct Mean : Differing {
  uint8_t mean;
  int at(size_t) const { return mean; }
  ZAVRI_INLINE U8 next() const { return splat<U8>(mean); }
  ZAVRI_INLINE U8 before(size_t) const { return splat<U8>(mean); }
};

struct OtherRow : Differing {
  const uint8_t* other;
  int at(size_t i) const { return other[i]; }
  ZAVRI_INLINE U8 next() { return load_next(&other); }
  ZAVRI_INLINE U8 before(size_t back) const { return load(other - back); }
};

template <class Reference>
uint32_t sum_plain(const uint8_t* row, size_t width, Reference reference) {
  uint32_t sum = 0;
  for (size_t i = 0; i < width; ++i) {
    sum += static_cast<uint32_t>(std::abs(row[i] - reference.at(i)));
  }
  return sum;
}

// A vector loaded from bytes + n has its last n bytes set.
constexpr struct SuffixMask {
  uint8_t bytes[2 * kVectorBytes];
  constexpr SuffixMask() : bytes{} {
    for (size_t i = kVectorBytes; i < 2 * kVectorBytes; ++i) bytes[i] = 0xff;
  }
} kSuffix;

// A step loads four vectors before it adds them, so that a processor which executes in order waits
// for all at once; they go into two sums, because an addition to one need not wait for the other.
// Of the last vector, which reaches back over bytes that have been added, only the rest of the row
// counts.
template <class Reference>
uint32_t sum_vectors(const uint8_t* row, size_t width, Reference reference) {
  constexpr size_t kStep = 4 * kVectorBytes;
  ByteSums sums[2];
  for (size_t steps = width / kStep; steps > 0;) {
    const size_t adds = std::min(steps, ByteSums::kMostAdds / 2);
    steps -= adds;
    for (const uint8_t* const end = row + adds * kStep; row != end;) {
      U8 samples[4];
      U8 references[4];
      for (size_t v = 0; v < 4; ++v) {
        samples[v] = load_next(&row);
        references[v] = reference.next();
      }
      for (size_t v = 0; v < 4; ++v) Reference::add(&sums[v % 2], samples[v], references[v]);
    }
    for (ByteSums& half : sums) half.settle();
  }
  sums[0].add(sums[1]);
  for (size_t left = width % kStep / kVectorBytes; left > 0; --left) {
    sums[0].add_abs_diff(load_next(&row), reference.next());
  }
  const size_t rest = width % kVectorBytes;
  const size_t back = kVectorBytes - rest;
  const U8 counts = load(kSuffix.bytes + rest);
  sums[0].add_abs_diff(load(row - back) & counts, reference.before(back) & counts);
  sums[0].settle();
  return sums[0].total();
}

template <class Reference>
uint32_t sum_row(const uint8_t* row, size_t width, Reference reference) {
  if (!kVectorized || width < kVectorBytes) return sum_plain(row, width, reference);
  return sum_vectors(row, width, reference);
}

uint32_t samples(const uint8_t* row, size_t width) { return sum_row(row, width, Zero{}); }

uint32_t differences(const uint8_t* row, const uint8_t* other, size_t width) {
  return sum_row(row, width, OtherRow{{}, other});
}

uint32_t deviations(const uint8_t* row, size_t width, uint8_t mean) {
  return sum_row(row, width, Mean{{}, mean});
}

}  // namespace

const RowSumKernels& row_sum_kernels(ThisBuild) {
  static constexpr RowSumKernels kKernels = {samples, differences, deviations};
  return kKernels;
}

}  // namespace zavri
