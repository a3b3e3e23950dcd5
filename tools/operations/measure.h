#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "tools/images/frame.h"
#include "tools/operations/setting.h"

namespace zavri::tools {

// Rectangles up to this many samples keep every sum below 2^32.
constexpr int64_t kSafeSamples = UINT32_MAX / (2 * 255);

// A rectangle is columns [x, x + width) and rows [y, y + height) of the luma.
struct Rect {
  int x, y, width, height;

  bool may_wrap() const { return int64_t{width} * height > kSafeSamples; }
  std::string text() const;  // "x,y,width,height"
};

// Makes the setting "rect" of commands that look at a part of each frame.
Setting rect_setting(std::optional<Rect>& rect, const char* what);

// Holds the library's four sums of a rectangle, each modulo 2^32.
struct Measures {
  uint32_t focus;
  uint32_t derivation;
  uint32_t average;
  uint32_t brightness;
  double mean;  // brightness of a sample, from a sum that never wraps
};

// Returns the largest rectangle that the library takes, which leaves a column to the right and a
// row below; where its sums might wrap, the middle of it.
Rect default_rect(const Frame& frame);

// Measures a rectangle. Throws an Error that names the frame and says what would fit, for a
// rectangle that the library would refuse or some sums of which are always 0. The library takes
// planes without padding: it is given the stride as the width, so that rows lie where they are.
Measures measure(const std::string& name, const Frame& frame, const Rect& rect);

}  // namespace zavri::tools
