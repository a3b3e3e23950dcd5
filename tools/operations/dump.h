#pragma once

#include <string>
#include <vector>

#include "tools/images/frame.h"
#include "tools/images/raw_format.h"

namespace zavri::tools {

// Loads a dump by the library's functions. These look only into the phone's camera folder: the
// program shows them the file there, whatever its name and folder are, and only for reading.
//
// A file 0.yuv is a fixed dump, two buffers; all others are frame dumps, whose luma and chroma may
// have meta[0] and meta[1] bytes in front. Those of the chroma stay between the planes.
Frame load_dump(const std::string& path, const RawOptions& raw, const std::vector<int>& meta);

}  // namespace zavri::tools
