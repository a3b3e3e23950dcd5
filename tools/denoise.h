#pragma once

#include <string>
#include <vector>

#include "tools/frame.h"

namespace zavri::tools {

// What the multi-frame denoise merges; named as the record's switches choose it.
enum class Merge { kWhole, kEdges, kEdgesLuma, kChroma };

struct DenoiseSettings {
  Merge merge = Merge::kWhole;
  int thresh = 0;  // 1..100 requested, 0 from the gain
  int thresh_luma = 0;
  int gain = 16;
  int reference = 0;
  bool smooth = false;
};

struct DenoiseResult {
  Frame frame;
  int thresh;  // that the library used and wrote back
  int thresh_luma;
  double seconds;  // of one call, the median of all runs
};

// Runs 1 to 4 frames of one size through the library's entry, `runs` times on fresh copies.
DenoiseResult denoise(const std::vector<Frame>& frames, const DenoiseSettings& settings,
                      int runs = 1);

// Where the library did less than the settings read: at a gain that has no edge modes, or with
// thresholds that leave it nothing to do once they are scaled by the frame's size.
std::vector<std::string> remarks(const DenoiseResult& result, const DenoiseSettings& settings,
                                 int frames);

}  // namespace zavri::tools
