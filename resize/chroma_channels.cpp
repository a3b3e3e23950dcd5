#include "resize/chroma_channels.h"

#include "simd/overlap.h"
#include "simd/vec.h"

namespace zavri {
namespace {

ZAVRI_INLINE void split_vector(const uint8_t* uv, size_t i, uint8_t* a, uint8_t* b) {
  const auto channels = load_deinterleaved<U8>(uv + 2 * i);
  store(a + i, channels.even);
  store(b + i, channels.odd);
}

void split(const uint8_t* uv, size_t pairs, uint8_t* a, uint8_t* b) {
  const Range from{uv, 2 * pairs};
  const Range to_a{a, pairs};
  const Range to_b{b, pairs};
  size_t i = 0;
  if (kVectorized && no_overlap({{from, to_a}, {from, to_b}, {to_a, to_b}})) {
    for (; i + kVectorBytes <= pairs; i += kVectorBytes) split_vector(uv, i, a, b);
  }
  for (; i < pairs; ++i) {
    a[i] = uv[2 * i];
    b[i] = uv[2 * i + 1];
  }
}

void merge(const uint8_t* a, const uint8_t* b, size_t pairs, uint8_t* uv) {
  const Range to{uv, 2 * pairs};
  size_t i = 0;
  if (kVectorized && no_overlap({{{a, pairs}, to}, {{b, pairs}, to}})) {
    for (; i + kVectorBytes <= pairs; i += kVectorBytes) {
      store_interleaved(uv + 2 * i, load(a + i), load(b + i));
    }
  }
  for (; i < pairs; ++i) {
    uv[2 * i] = a[i];
    uv[2 * i + 1] = b[i];
  }
}

}  // namespace

const ChannelKernels& channel_kernels(ThisBuild) {
  static constexpr ChannelKernels kKernels = {split, merge};
  return kKernels;
}

}  // namespace zavri
