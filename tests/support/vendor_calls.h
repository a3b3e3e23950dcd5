#pragma once

#include <cstdint>
#include <ostream>
#include <thread>
#include <vector>

// The test executable wraps the vendor's functions at link time. Any thread may call them.
namespace zavri::testing {

struct ScalerCall {
  enum Function { kScale, kScaleUpPoly } function;
  uint32_t src_width, src_height, src_stride;
  uint32_t dst_width, dst_height, dst_stride;
  int interpolation;  // is -1 where the function has none
  uint8_t first;      // is the first source sample, or 0 for an empty plane
  const uint8_t* src;
  uint8_t* dst;
  std::thread::id thread;

  // Compares the arguments that are no addresses.
  friend bool operator==(const ScalerCall& a, const ScalerCall& b);
};

std::ostream& operator<<(std::ostream& out, const ScalerCall& call);

// Returns the calls since the last time, in order. Nothing is scaled: as far as both planes reach,
// each destination byte becomes the inverted source byte of the same index.
std::vector<ScalerCall> take_scaler_calls();

struct GaussianCall {
  const uint8_t* from;
  uint32_t width;
  uint32_t height;
  uint8_t* to;
  int blur_border;
};

// Returns the calls since the last time, in order. They are passed on.
std::vector<GaussianCall> take_gaussian_calls();

}  // namespace zavri::testing
