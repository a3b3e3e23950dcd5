#pragma once

#include <cstddef>
#include <cstdint>

#include "simd/builds.h"

namespace zavri {

inline constexpr size_t kGaussianReach = 2;

// Blurs a plane without row padding by [1 4 6 4 1] x [1 4 6 4 1] / 256, rounded. At the borders
// samples outside are replaced by the nearest inside, or else the outer kGaussianReach pixels of
// `to` are not written.
void blur_gaussian(const uint8_t* from, size_t width, size_t height, uint8_t* to, bool borders);

// Row kernels: [1 4 6 4 1] down the columns of five rows, unrounded, then along those sums.
struct GaussianKernels {
  // sums[0, count)
  void (*down)(const uint8_t* const* rows, size_t count, uint16_t* sums);
  // to[0, count), each centred on sums[x + kGaussianReach].
  void (*along)(const uint16_t* sums, size_t count, uint8_t* to);
};

const GaussianKernels& gaussian_kernels(PlainBuild);
const GaussianKernels& gaussian_kernels(Vector16Build);
const GaussianKernels& gaussian_kernels(Vector32Build);

inline const GaussianKernels& gaussian_kernels(Build build = best_build()) {
  return pick_build(build,
                    [](auto tag) -> const GaussianKernels& { return gaussian_kernels(tag); });
}

}  // namespace zavri
