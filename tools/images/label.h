#pragma once

#include <string>

#include "tools/images/frame.h"

namespace zavri::tools {

constexpr int kLabelHeight = 28;

// Writes white text on a dark band of kLabelHeight rows, whose left top corner is at (x, y).
// Returns false where the font, DejaVu Sans, is not installed; then only the band is there.
bool draw_label(Picture& picture, int x, int y, int width, const std::string& text);

}  // namespace zavri::tools
