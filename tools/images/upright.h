#pragma once

#include "tools/images/ffmpeg.h"
#include "tools/images/frame.h"

namespace zavri::tools {

// Says how the stored picture becomes upright: its axes are swapped if `transposes`, and then
// columns and rows are reversed. A picture to be turned clockwise by 90 degrees transposes and
// reverses columns.
struct Orientation {
  bool transposes = false;
  bool reverses_columns = false;
  bool reverses_rows = false;
};

// Returns what camera or phone noted in the file.
Orientation orientation_of(const AVFrame& frame);

// Turns a frame without padding, or a picture.
Frame upright(Frame frame, const Orientation& orientation);
Picture upright(Picture picture, const Orientation& orientation);

}  // namespace zavri::tools
