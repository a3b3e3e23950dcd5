#pragma once

#include "tools/images/frame.h"

namespace zavri::tools {

// Moves the picture right by `x` and down by `y` pixels, which need not be whole. Its border pixels
// repeat where it ends. A windowed sinc of 16 taps does it, so that a picture between pixels is as
// sharp as one that stays: half a pixel off, patterns up to 0.85 of the finest that there can be
// keep their amplitude within 3 %. Steps of whole pixels change no sample.
Picture shifted(const Picture& picture, double x, double y);

// A pixel's surroundings reach so far into the result.
constexpr int kShiftReach = 8;

}  // namespace zavri::tools
