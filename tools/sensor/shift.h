#pragma once

#include "tools/images/frame.h"

namespace zavri::tools {

// The picture moved right by `x` and down by `y` pixels, which need not be whole. Its border pixels
// repeat where it ends. So that a picture between pixels is as sharp as one that stays, a windowed
// sinc of 16 taps does it: half a pixel off, patterns up to 0.85 of the finest that there can be
// keep their amplitude within 3 %. Steps of whole pixels change nothing.
Picture shifted(const Picture& picture, double x, double y);

// How far a pixel's surroundings reach into the result.
constexpr int kShiftReach = 8;

}  // namespace zavri::tools
