#pragma once

#include <string>
#include <vector>

#include "tools/images/frame.h"
#include "tools/images/storage.h"

namespace zavri::tools {

// A scene with shades, edges of waves and saturated colours, no two corners alike.
Picture scene(int width, int height);

// Grey levels from dark to bright in even steps from left to right; the lower half has fine and
// coarse texture on top of them.
Picture half_textured(int width, int height);

// A stream of these frames, whose planes follow each other.
Bytes y4m(int width, int height, const std::string& tags, const std::vector<Bytes>& frames);

// Every plane has this many decibels at least.
void expect_near(const Frame& frame, const Frame& expected, double decibels);

}  // namespace zavri::tools
