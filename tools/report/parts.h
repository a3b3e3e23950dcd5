#pragma once

#include <vector>

#include "tools/images/frame.h"
#include "tools/images/mask.h"
#include "tools/report/page.h"

namespace zavri::tools {

// The versions of a picture that a page shows. What is not known is null.
struct Versions {
  const Frame& before;
  const Frame& after;
  const Frame* clean = nullptr;
  const Mask* moving = nullptr;
};

constexpr int kCloserScale = 3;

// A part that is worth to be looked at: where most was lost, the most even, the most detailed, and
// the one with most motion.
struct Part {
  std::string name;  // "worst loss"
  PageRegion region;
  PageRegion closer;  // a third of it each way, chosen by the same rule
};
std::vector<Part> choose_parts(const Versions& versions, int width, int height);

// How much nearer to the clean frame the part came, as a difference of luma PSNR; none without one.
std::optional<double> gained(const Versions& versions, const PageRegion& region);

// The whole picture and its parts, at 1:1 and closer at 3:1.
std::vector<PageComparison> compared(const Versions& versions);

}  // namespace zavri::tools
