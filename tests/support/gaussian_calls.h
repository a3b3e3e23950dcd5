#pragma once

#include <cstdint>
#include <vector>

// The test executables define fcvFilterGaussian5x5u8: [1 4 6 4 1] both ways, rounded, samples
// outside replaced by the nearest inside.
namespace zavri::testing {

struct GaussianCall {
  const uint8_t* from;
  uint32_t width;
  uint32_t height;
  uint8_t* to;
  int blur_border;
};

// The calls since the last one of this, in order; any thread may blur meanwhile.
std::vector<GaussianCall> take_gaussian_calls();

// Of the sample at x, y.
uint8_t gaussian_at(const uint8_t* plane, int width, int height, int x, int y);

}  // namespace zavri::testing
