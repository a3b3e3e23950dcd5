#pragma once

#include <string>
#include <vector>

#include "tools/images/frame.h"
#include "tools/images/raw_format.h"
#include "tools/operations/setting.h"

namespace zavri::tools {

// Says how many bytes stand in front of the planes of a frame dump.
struct DumpMeta {
  int luma = 0;
  int chroma = 0;

  Setting setting();
};

// Loads a dump by the library's functions. These look only into the phone's camera folder: the
// program shows them the file there, whatever its name and folder are, and only for reading.
//
// A file 0.yuv is a fixed dump, two buffers, and has no meta bytes; all others are frame dumps. The
// meta bytes of the chroma stay between the planes.
Frame load_dump(const std::string& path, const RawOptions& raw, const DumpMeta& meta);

}  // namespace zavri::tools
