#pragma once

#include <cstdint>
#include <vector>

// The test executable wraps fcvFilterGaussian5x5u8 at link time: calls are recorded and passed on.
namespace zavri::testing {

struct GaussianCall {
  const uint8_t* from;
  uint32_t width;
  uint32_t height;
  uint8_t* to;
  int blur_border;
};

// Returns the calls since the last call of this function, in order; any thread may blur meanwhile.
std::vector<GaussianCall> take_gaussian_calls();

}  // namespace zavri::testing
