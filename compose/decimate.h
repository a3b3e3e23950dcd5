#pragma once

#include <cstddef>
#include <cstdint>

#include "simd/builds.h"

namespace zavri {

// Copies every second sample of a row, the first among them, to to[0, bytes); reads below
// from + 2 * bytes. Rows may overlap: the samples are then copied one after the other.
using DecimateFunction = void (*)(uint8_t* to, const uint8_t* from, size_t bytes);

struct DecimateKernels {
  DecimateFunction luma;
  DecimateFunction chroma;  // samples are (U, V) pairs, `bytes` is even
};

const DecimateKernels& decimate_kernels(PlainBuild);
const DecimateKernels& decimate_kernels(Vector16Build);
const DecimateKernels& decimate_kernels(Vector32Build);

inline const DecimateKernels& decimate_kernels(Build build = best_build()) {
  return pick_build(build,
                    [](auto tag) -> const DecimateKernels& { return decimate_kernels(tag); });
}

}  // namespace zavri
