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
ZAVRI_INLINE void decimate_vector(uint8_t* to, const uint8_t* from, size_t b) {
  using Samples = std::conditional_t<kSize == 1, U8, U16>;
  store(to + b, load_deinterleaved<Samples>(from + 2 * b).even);
}

template <size_t kSize>
void decimate_vectors(uint8_t* to, const uint8_t* from, size_t bytes) {
  size_t b = 0;
  for (; b + 2 * kVectorBytes <= bytes; b += 2 * kVectorBytes) {
    decimate_vector<kSize>(to, from, b);
    decimate_vector<kSize>(to, from, b + kVectorBytes);
  }
  for_vectors(b, bytes, [=](size_t i) { decimate_vector<kSize>(to, from, i); });
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
