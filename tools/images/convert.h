#pragma once

#include "tools/images/ffmpeg.h"
#include "tools/images/frame.h"

// These functions change pixel formats, ranges and matrices. An AVFrame here always says its range
// and its matrix.
namespace zavri::tools {

// The format, range, matrix and size of a conversion's result.
struct PixelTarget {
  AVPixelFormat format;
  AVColorRange range = AVCOL_RANGE_JPEG;
  AVColorSpace matrix = AVCOL_SPC_BT470BG;
  int width = 0;  // 0: the size of the source
  int height = 0;
};
AvFrame convert(const AVFrame& from, const PixelTarget& target);

// Copies a picture into FFmpeg's buffers, whose rows are padded as its vector code needs them.
AvFrame to_av(const Frame& frame);
AvFrame to_av(const Picture& picture);

// Converts to NV12 or RGB. A frame leaves an odd last row or column out.
Frame frame_from_av(const AVFrame& from);
Picture picture_from_av(const AVFrame& from);

}  // namespace zavri::tools
