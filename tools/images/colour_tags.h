#pragma once

#include "tools/images/ffmpeg.h"

namespace zavri::tools {

// Settles range and matrix of a decoded frame where the file leaves them open. A still picture and
// a frame of full range, whose chroma stands in the middle of its pixels, or which is small, is
// BT.601; all other video is BT.709, as players take it. RGB and grey have no matrix and are given
// BT.601, that of every frame here, so that nothing is converted on their account.
void tag_colours(AVFrame& frame, bool is_still);

}  // namespace zavri::tools
