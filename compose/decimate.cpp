#include "compose/decimate.h"

#include "simd/overlap.h"
#include "simd/vec.h"

namespace zavri {
namespace {

// Applies the rule to samples of kSize bytes.
template <size_t kSize>
void decimate_plain(uint8_t* to, const uint8_t* from, size_t bytes) {
  for (size_t b = 0; b < bytes; b += kSize) {
    for (size_t i = 0; i < kSize; ++i) to[b + i] = from[2 * b + i];
  }
}

template <size_t kSize>
ZAVRI_INLINE U8 decimate_vector(const uint8_t* from) {
  using Samples = std::conditional_t<kSize == 1, U8, U16>;
  return (U8)load_deinterleaved<Samples>(from).even;
}

template <size_t kSize>
void decimate_vectors(uint8_t* to, const uint8_t* from, size_t bytes) {
  constexpr size_t kStep = 2 * kVectorBytes;
  uint8_t* next = to;
  const uint8_t* next_from = from;
  for (size_t left = bytes / kStep; left > 0; --left, next_from += 2 * kStep) {
    store_next(&next, decimate_vector<kSize>(next_from));
    store_next(&next, decimate_vector<kSize>(next_from + kStep));
  }
  for_vectors(bytes - bytes % kStep, bytes,
              [=](size_t i) { store(to + i, decimate_vector<kSize>(from + 2 * i)); });
}

template <size_t kSize>
void decimate(uint8_t* to, const uint8_t* from, size_t bytes) {
  if (kVectorized && bytes >= kVectorBytes && no_overlap({{{from, 2 * bytes}, {to, bytes}}})) {
    return decimate_vectors<kSize>(to, from, bytes);
  }
  decimate_plain<kSize>(to, from, bytes);
}

void fill(uint8_t* to, uint8_t byte, size_t n) { fill_bytes(to, byte, n); }

}  // namespace

const DecimateKernels& decimate_kernels(ThisBuild) {
  static constexpr DecimateKernels kKernels = {decimate<1>, decimate<2>, fill};
  return kKernels;
}

}  // namespace zavri
