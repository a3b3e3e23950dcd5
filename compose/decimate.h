#pragma once

#include <cstddef>
#include <cstdint>

#include "simd/builds.h"

namespace zavri {

// Copies the samples 0, 2, 4 .. of the row from[0, 2 * bytes) to to[0, bytes). Where the two
// overlap the result is that of copying one sample after the other.
using DecimateFunction = void (*)(uint8_t* to, const uint8_t* from, size_t bytes);

using FillFunction = void (*)(uint8_t* to, uint8_t byte, size_t n);

struct DecimateKernels {
  DecimateFunction luma;
  DecimateFunction chroma;  // samples are (U, V) pairs, `bytes` is even
  FillFunction fill;        // sets to[0, n) to `byte`
};

const DecimateKernels& decimate_kernels(PlainBuild);
const DecimateKernels& decimate_kernels(Vector16Build);
const DecimateKernels& decimate_kernels(Vector32Build);

inline const DecimateKernels& decimate_kernels(Build build = best_build()) {
  return pick_build(build,
                    [](auto tag) -> const DecimateKernels& { return decimate_kernels(tag); });
}

}  // namespace zavri
