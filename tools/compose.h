#pragma once

#include <cstdint>
#include <string>

#include "tools/frame.h"

namespace zavri::tools {

// Where the bands of padding stand; numbered as the record's mode.
enum class Pad : uint32_t { kLeft, kRight, kCenter, kBoth };

struct ComposeSettings {
  Pad pad = Pad::kCenter;
  int padding = 0;  // columns of all bands together
};

struct Composed {
  Frame frame;
  double seconds;  // of one call, the median of all runs
};

// Puts two frames of one size side by side at half their size through the library's entry.
Composed compose(const Frame& a, const Frame& b, const ComposeSettings& settings, int runs = 1);

// One line when rows of the picture slide, because the numbers do not divide.
std::string remark(const Frame& frame, const ComposeSettings& settings);

}  // namespace zavri::tools
