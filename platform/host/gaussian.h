#pragma once

#include <cstddef>
#include <cstdint>

#include "simd/builds.h"

namespace zavri::host {

inline constexpr size_t kGaussianReach = 2;

// Blurs a plane without row padding by [1 4 6 4 1] x [1 4 6 4 1] / 256, rounded. With `borders` the
// nearest sample inside stands for one outside; otherwise the outer kGaussianReach pixels of `to`
// are not written.
void blur_gaussian(const uint8_t* from, size_t width, size_t height, uint8_t* to, bool borders);

// Neighbouring rows of the result: row r is at to + r * width and is made of the source's rows[r]
// to rows[r + 2 * kGaussianReach].
struct GaussianBand {
  uint8_t* to;
  const uint8_t* const* rows;
  size_t count;
  size_t width;
};

// A GaussianFunction blurs the columns [first, last) of a band.
using GaussianFunction = void (*)(const GaussianBand& band, size_t first, size_t last);

GaussianFunction gaussian_kernel(PlainBuild);
GaussianFunction gaussian_kernel(Vector16Build);
GaussianFunction gaussian_kernel(Vector32Build);

inline GaussianFunction gaussian_kernel(Build build = best_build()) {
  return pick_build(build, [](auto tag) { return gaussian_kernel(tag); });
}

}  // namespace zavri::host
