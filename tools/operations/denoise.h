#pragma once

#include "tools/operations/operation.h"

namespace zavri::tools {

// What the multi-frame denoise merges; named as the record's switches choose it.
enum class Merge { kWhole, kEdges, kEdgesLuma, kChroma };

// Merges one to four frames of a scene.
class Denoise : public Operation {
 public:
  int thresh = 0;  // 1..100 requested, 0 from the gain
  int thresh_luma = 0;
  Merge merge = Merge::kWhole;
  int gain = 16;
  int reference = 0;  // index of the frame that is denoised
  bool smooth = false;

  Settings settings() override;
  Count takes() const override { return {1, 4}; }
  void check(const Size& size, int frames) const override;
  // Figures: the thresholds that the library used, "thresh" and "thresh_luma".
  Result run(const Frames& frames, int runs = 1) const override;
};

// Smooths the chroma of single frames and merges nothing.
class Smooth : public Denoise {
 public:
  Smooth() { smooth = true; }
  Settings settings() override;
  Count takes() const override { return {1, 1}; }
};

}  // namespace zavri::tools
