#pragma once

#include <string>
#include <vector>

#include "tools/files.h"
#include "tools/frame.h"
#include "tools/raw_format.h"

namespace zavri::tools {

// What a file holds: one picture (PNG, JPEG, PPM) or raw frame, or all frames of a Y4M stream.
struct Loaded {
  std::string format;  // "picture", "Y4M", "nv12", "nv21"
  std::vector<Frame> frames;
};
Loaded load(const std::string& path, const RawOptions& raw);

// The first of them.
Frame load_frame(const std::string& path, const RawOptions& raw);

// The frame in `bytes`, which are format.bytes() of them.
Frame decode_raw(const Bytes& bytes, const RawFormat& format);

Picture load_picture(const std::string& path);

// Encodes by the extension of `path`: .png .jpg .ppm .y4m .nv12 .nv21 .yuv; stdout takes Y4M.
Bytes encode(const Frame& frame, const std::string& path);
Bytes encode(const Picture& picture, const std::string& path);

// Throws unless encode() knows the name's extension.
void check_extension(const std::string& path);

}  // namespace zavri::tools
