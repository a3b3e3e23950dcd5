#include "compose/decimate.h"

#ifndef ZAVRI_BUILD_PLAIN
#include "simd/vec.h"
#endif

namespace zavri {
namespace {

// The rule, for samples of kSize bytes.
template <size_t kSize>
void decimate_plain(uint8_t* to, const uint8_t* from, size_t bytes) {
  for (size_t b = 0; b < bytes; b += kSize) {
    for (size_t i = 0; i < kSize; ++i) to[b + i] = from[2 * b + i];
  }
}

#ifdef ZAVRI_BUILD_PLAIN

template <size_t kSize>
void decimate(uint8_t* to, const uint8_t* from, size_t bytes) {
  decimate_plain<kSize>(to, from, bytes);
}

#else

template <size_t kSize>
ZAVRI_INLINE void decimate_vector(uint8_t* to, const uint8_t* from, size_t b) {
  const V8 low = load(from + 2 * b);
  const V8 high = load(from + 2 * b + kVectorBytes);
  if constexpr (kSize == 1) {
    store(to + b, even(low, high));
  } else {
    store(to + b, (V8)even((V16)low, (V16)high));
  }
}

template <size_t kSize>
void decimate(uint8_t* to, const uint8_t* from, size_t bytes) {
  const auto target = reinterpret_cast<uintptr_t>(to);
  const auto source = reinterpret_cast<uintptr_t>(from);
  const bool overlap = target < source + 2 * bytes && source < target + bytes;
  if (bytes < kVectorBytes || overlap) return decimate_plain<kSize>(to, from, bytes);

  size_t b = 0;
  for (; b + kVectorBytes <= bytes; b += kVectorBytes) decimate_vector<kSize>(to, from, b);
  // The last vector repeats some of the one before it.
  if (b < bytes) decimate_vector<kSize>(to, from, bytes - kVectorBytes);
}

#endif

}  // namespace

const DecimateKernels& decimate_kernels(ThisBuild) {
  static constexpr DecimateKernels kKernels = {decimate<1>, decimate<2>};
  return kKernels;
}

}  // namespace zavri
