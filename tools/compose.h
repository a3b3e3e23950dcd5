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

// Why the library cannot compose two frames of this size so, in one line; empty if it can.
std::string refusal(const Frame& frame, const ComposeSettings& settings);

// Puts two frames of one size side by side at half their size through the library's entry.
Composed compose(const Frame& a, const Frame& b, const ComposeSettings& settings, int runs = 1);

// One line when the picture is not exact, with the numbers that do not divide.
std::string remark(const Frame& frame, const ComposeSettings& settings);

}  // namespace zavri::tools
