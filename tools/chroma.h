#pragma once

#include <string>
#include <vector>

#include "tools/frame.h"

namespace zavri::tools {

struct ChromaSettings {
  int taps = 11;             // 7, 11, 15 or 19
  int threshold = 16;        // 1..127
  std::vector<int> weights;  // by difference; when empty, they fall as a Gaussian
  double falloff = 0;        // its sigma; 0: half the threshold
  bool legacy = false;       // eleven taps with the fixed tolerance instead
  bool parallel = false;     // all strips at once, on the library's pool
};

struct ChromaResult {
  Frame frame;     // U first
  double seconds;  // of the four strips, the median of all runs
};

// Whether the window fits into the frame's chroma plane.
bool is_large_enough(const Frame& frame, const ChromaSettings& settings);

// Runs the chroma denoise on a frame, each run on a fresh copy.
ChromaResult denoise_chroma(const Frame& frame, const ChromaSettings& settings, int runs = 1);

// The numbers of a text file: the weights of the differences 0, 1, 2 ..
std::vector<int> read_weights(const std::string& path);

}  // namespace zavri::tools
