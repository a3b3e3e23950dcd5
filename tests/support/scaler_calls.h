#pragma once

#include <cstdint>
#include <ostream>
#include <thread>
#include <vector>

// The test executable wraps the scaler's functions at link time.
namespace zavri::testing {

struct ScalerCall {
  enum Function { kScale, kScaleUpPoly } function;
  uint32_t src_width, src_height, src_stride;
  uint32_t dst_width, dst_height, dst_stride;
  int interpolation;  // -1 where the function has none
  uint8_t first;      // source sample, 0 of an empty plane
  const uint8_t* src;
  uint8_t* dst;
  std::thread::id thread;

  // The arguments that are no addresses.
  friend bool operator==(const ScalerCall& a, const ScalerCall& b);
};

std::ostream& operator<<(std::ostream& out, const ScalerCall& call);

// The calls since the last time, in order. They are recorded instead of carried out, but make of a
// source byte at the same index, as far as both planes reach, destination byte = ~source byte.
std::vector<ScalerCall> take_scaler_calls();

}  // namespace zavri::testing
