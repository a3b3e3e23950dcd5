#pragma once

#include <cstdint>
#include <string>

#include "tools/frame.h"

namespace zavri::tools {

// Numbered as the record's scale_mode.
enum class Scaling : uint16_t { kPoly, kBilinear };

struct ResizeSettings {
  int width = 0;
  int height = 0;
  Scaling scaling = Scaling::kPoly;
};

struct ResizeResult {
  Frame frame;
  double seconds;  // of one call, the median of all runs
};

// Enlarges a frame through the library's entry.
ResizeResult resize(const Frame& frame, const ResizeSettings& settings, int runs = 1);

// One line when rows shift at the borders of the strips.
std::string remark(const Frame& frame, const ResizeSettings& settings);

}  // namespace zavri::tools
