#pragma once

#include <string>
#include <vector>

#include "tools/images/frame.h"
#include "tools/images/storage.h"

namespace zavri::tools {

// A scene with shades, edges of waves and saturated colours, no two corners alike.
Picture scene(int width, int height);

// A stream of these frames, whose planes follow each other.
Bytes y4m(int width, int height, const std::string& tags, const std::vector<Bytes>& frames);

// Every plane has this many decibels at least.
void expect_near(const Frame& frame, const Frame& expected, double decibels);

}  // namespace zavri::tools
