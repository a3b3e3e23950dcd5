#pragma once

#include <string>

#include "tools/images/frame.h"
#include "tools/images/raw_format.h"
#include "tools/images/storage.h"

namespace zavri::tools {

// The frame in `bytes`, which are format.bytes many. Of nv12 and nv21 the bytes become the frame's
// buffer as they are; others are converted. No raw frame says its range: it is taken as full, and
// the matrix as BT.601, which is what cameras of phones make.
Frame decode_raw(Bytes bytes, const RawFormat& format);

// For the extensions .nv12 and .nv21 the frame's buffer, with the pairs of chroma swapped if they
// are of the other order; for .yuv the buffer in any case; .i420 and .yv12 have no padding.
Bytes encode_raw(const Frame& frame, const std::string& extension);

}  // namespace zavri::tools
