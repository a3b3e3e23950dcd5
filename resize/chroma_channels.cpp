#include "resize/chroma_channels.h"

#include "simd/vec.h"

namespace zavri {
namespace {

void split_plain(const uint8_t* uv, size_t pairs, uint8_t* a, uint8_t* b) {
  for (size_t i = 0; i < pairs; ++i) {
    a[i] = uv[2 * i];
    b[i] = uv[2 * i + 1];
  }
}

void split_vectors(const uint8_t* uv, size_t pairs, uint8_t* a, uint8_t* b) {
  for_vectors(0, pairs, [=](size_t i) {
    const auto channels = load_deinterleaved<U8>(uv + 2 * i);
    store(a + i, channels.even);
    store(b + i, channels.odd);
  });
}

void merge_plain(const uint8_t* a, const uint8_t* b, size_t pairs, uint8_t* uv) {
  for (size_t i = 0; i < pairs; ++i) {
    uv[2 * i] = a[i];
    uv[2 * i + 1] = b[i];
  }
}

void merge_vectors(const uint8_t* a, const uint8_t* b, size_t pairs, uint8_t* uv) {
  for_vectors(0, pairs, [=](size_t i) { store_interleaved(uv + 2 * i, load(a + i), load(b + i)); });
}

void split(const uint8_t* uv, size_t pairs, uint8_t* a, uint8_t* b) {
  if (kVectorized && pairs >= kVectorBytes) return split_vectors(uv, pairs, a, b);
  split_plain(uv, pairs, a, b);
}

void merge(const uint8_t* a, const uint8_t* b, size_t pairs, uint8_t* uv) {
  if (kVectorized && pairs >= kVectorBytes) return merge_vectors(a, b, pairs, uv);
  merge_plain(a, b, pairs, uv);
}

}  // namespace

const ChannelKernels& channel_kernels(ThisBuild) {
  static constexpr ChannelKernels kKernels = {split, merge};
  return kKernels;
}

}  // namespace zavri
