#include "resize/chroma_channels.h"

#include "simd/overlap.h"
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

// Where both channels are written to the same bytes, the rule decides which one is written last.
void split(const uint8_t* uv, size_t pairs, uint8_t* a, uint8_t* b) {
  const Range from{uv, 2 * pairs};
  const Range to_a{a, pairs};
  const Range to_b{b, pairs};
  if (kVectorized && pairs >= kVectorBytes && no_overlap({{from, to_a}, {from, to_b}}) &&
      !overlap(to_a, to_b)) {
    return split_vectors(uv, pairs, a, b);
  }
  split_plain(uv, pairs, a, b);
}

void merge(const uint8_t* a, const uint8_t* b, size_t pairs, uint8_t* uv) {
  const Range to{uv, 2 * pairs};
  if (kVectorized && pairs >= kVectorBytes && no_overlap({{{a, pairs}, to}, {{b, pairs}, to}})) {
    return merge_vectors(a, b, pairs, uv);
  }
  merge_plain(a, b, pairs, uv);
}

}  // namespace

const ChannelKernels& channel_kernels(ThisBuild) {
  static constexpr ChannelKernels kKernels = {split, merge};
  return kKernels;
}

}  // namespace zavri
