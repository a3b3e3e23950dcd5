#pragma once

#include <cstddef>
#include <cstdint>

#include "simd/builds.h"

namespace zavri {

// These kernels take interleaved chroma apart and put it together again, for i in [0, pairs). The
// channels are scratch of their caller: they overlap neither each other nor the chroma.
struct ChannelKernels {
  // a[i] = uv[2i], b[i] = uv[2i + 1]
  void (*split)(const uint8_t* uv, size_t pairs, uint8_t* a, uint8_t* b);
  // uv[2i] = a[i], uv[2i + 1] = b[i]
  void (*merge)(const uint8_t* a, const uint8_t* b, size_t pairs, uint8_t* uv);
};

const ChannelKernels& channel_kernels(PlainBuild);
const ChannelKernels& channel_kernels(Vector16Build);
const ChannelKernels& channel_kernels(Vector32Build);

inline const ChannelKernels& channel_kernels(Build build = best_build()) {
  return pick_build(build, [](auto tag) -> const ChannelKernels& { return channel_kernels(tag); });
}

}  // namespace zavri
