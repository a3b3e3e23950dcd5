#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/images/frame.h"
#include "tools/images/raw_format.h"
#include "tools/images/storage.h"

// Frames and pictures from and to files of all formats. Each function throws an Error of one line
// that names the file.
namespace zavri::tools {

struct InputOptions {
  RawOptions raw;
  std::string frames;  // of a stream: "N", or "A:B" with B included, counted from 0
};

// What was taken of a file: a raw frame, a picture, or frames of a stream.
struct Loaded {
  std::string format;         // for people: "png rgb24", "h264 yuv420p", "raw nv21"
  bool is_raw = false;        // only then the raw options were used
  int64_t total_frames = 1;   // in the file
  std::vector<Frame> frames;  // one at least
};

// Takes the frames that the options name; when they name none, the first `most` of a stream, so
// that total_frames > frames.size() tells of frames left out.
Loaded load(const std::string& path, const InputOptions& options, int most = 1);

// Loads each path. Throws when raw options were given and no path is raw.
std::vector<Loaded> load_all(const std::vector<std::string>& paths, const InputOptions& options,
                             int most = 1);

// The frames of all paths. Throws when a stream has more than `most` and the options name none, and
// like load_all().
std::vector<Frame> load_frames(const std::vector<std::string>& paths, const InputOptions& options,
                               int most);

// The one frame of a file.
Frame load_frame(const std::string& path, const InputOptions& options);

// A picture, or the first frame of a stream, as RGB at its full size.
Picture load_picture(const std::string& path);

// For people: the extensions that outputs have, such as ".png, .jpg or .nv12".
std::string output_extensions();

// Throws unless the name's extension is one of output_extensions(), the folder exists, and nothing
// is overwritten without `force`. Call it before the work that makes the output.
void check_output(const std::string& path, bool force);

// By the extension of `path`; stdout takes Y4M. Raw semi-planar files get the layout of the frame
// with its padding, .yuv the frame's own order of chroma, too.
void save(const Frame& frame, const std::string& path);
void save(const Picture& picture, const std::string& path);

}  // namespace zavri::tools
