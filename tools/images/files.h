#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/images/encode.h"
#include "tools/images/frame.h"
#include "tools/images/mask.h"
#include "tools/images/raw_format.h"
#include "tools/images/storage.h"

// These functions load frames and pictures from files of all formats; save() of encode.h writes
// them. Each throws an Error of one line that names the file.
namespace zavri::tools {

// Names frames of a stream, counted from 0; `last` is one of them.
struct FrameRange {
  int first;
  int last;

  std::string text() const;  // "2" or "0:3"
};

struct InputOptions {
  RawOptions raw;
  std::optional<FrameRange> frames;
};

// Holds what was taken of a file: a raw frame, a picture, or frames of a stream.
struct Loaded {
  std::string format;         // for people: "png rgb24", "h264 yuv420p", "raw nv21"
  bool is_raw = false;        // only raw frames use the raw options
  int64_t total_frames = 1;   // in the file
  std::vector<Frame> frames;  // one at least
};

// Takes the frames that the options name, or, where they name none, the first `most` of a stream:
// then total_frames > frames.size() tells of frames left out.
Loaded load(const std::string& path, const InputOptions& options, int most = 1);

// Loads each path. Throws where raw options were given and no path is raw.
std::vector<Loaded> load_all(const std::vector<std::string>& paths, const InputOptions& options,
                             int most = 1);

// Loads the frames of all paths. Throws as load_all() does, and where a stream has more than `most`
// and the options name none.
std::vector<Frame> load_frames(const std::vector<std::string>& paths, const InputOptions& options,
                               int most);

// Loads the one frame of a file.
Frame load_frame(const std::string& path, const InputOptions& options);

// Makes a frame of format.bytes bytes. Those of a semi-planar frame become its buffer as they are;
// others are converted. No raw frame says its range: it is taken as full, and the matrix as BT.601,
// which is what cameras of phones make.
Frame decode_raw(Bytes bytes, const RawFormat& format);

// Loads a picture, or the first frame of a stream, as RGB at its full size.
Picture load_picture(const std::string& path);

// Loads a picture of a set of pixels; throws unless its size is `size`, such as "4000x3000".
Mask load_mask(const std::string& path, const std::string& size);

}  // namespace zavri::tools
