#pragma once

#include <string>

#include "tools/images/frame.h"
#include "tools/images/storage.h"

namespace zavri::tools {

// Throws an Error unless the name's extension is one that encode() takes, the folder exists, and
// nothing is overwritten without `force`. Call it before the work that makes the output.
void check_output(const std::string& path, bool force);

// Writes a file by the extension of `path`; stdout takes Y4M.
void save(const Frame& frame, const std::string& path);
void save(const Picture& picture, const std::string& path);

// Returns the bytes of a file with this extension, which is in lower case. Raw frames .nv12 and
// .nv21 get the layout of the frame with its padding, .yuv and .raw its order of chroma, too; .i420
// and .yv12 have no padding.
Bytes encode(const Frame& frame, const std::string& extension);
Bytes encode(const Picture& picture, const std::string& extension);

}  // namespace zavri::tools
