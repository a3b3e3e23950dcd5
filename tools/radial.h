#pragma once

#include <string>

#include "tools/frame.h"

namespace zavri::tools {

struct RadialSettings {
  int radius = 100;   // percent of a corner's squared distance, where the blur is full
  int strength = 80;  // percent of the way to the blurred value there
};

struct RadialResult {
  Frame frame;
  double seconds;         // of the twelve tiles, the median of all runs
  double tables_seconds;  // of the tables, once for a size
};

// Why the library cannot blur the frame so, in one line with what would be right; empty if it can.
std::string refusal(const Frame& frame, const RadialSettings& settings);

// Blurs the luma the more, the farther from the centre, with the tiles on the library's pool; each
// run on a fresh copy.
RadialResult reduce_radially(const Frame& frame, const RadialSettings& settings, int runs = 1);

}  // namespace zavri::tools
