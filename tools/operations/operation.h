#pragma once

#include <string>
#include <utility>
#include <vector>

#include "bench/repeated_runs.h"
#include "tools/images/frame.h"
#include "tools/operations/setting.h"

namespace zavri::tools {

using Frames = std::vector<Frame>;

struct Size {
  int width = 0;
  int height = 0;

  std::string text() const { return std::to_string(width) + 'x' + std::to_string(height); }
  bool operator==(const Size& other) const {
    return width == other.width && height == other.height;
  }
};

inline Size size_of(const Frame& frame) { return {frame.width(), frame.height()}; }

// Holds what one run made.
struct Result {
  Frame frame;
  double seconds = 0;  // in the library, the median of all runs
  // The library told these numbers beside the frame, under names such as "thresh_luma".
  std::vector<std::pair<std::string, double>> figures;
  std::vector<std::string> remarks;  // on what the settings ask for and the library does not do
};

// An operation of the library owns its settings and its one call of the library.
class Operation {
 public:
  virtual ~Operation() = default;

  // Returns settings that are bound to this object, the ones that are set most often first.
  virtual Settings settings() = 0;

  // Says how many frames one run takes.
  struct Count {
    int least;
    int most;
  };
  virtual Count takes() const { return {1, 1}; }

  // Throws an Error that names the setting, unless the settings go together and suit so many frames
  // of this size. run() checks the same.
  virtual void check(const Size& size, int frames) const = 0;

  // Returns the size of the frame that run() makes of frames of this size.
  virtual Size result_size(const Size& size) const { return size; }

  // Runs so many times, each time on fresh copies of the frames. The result has the layout and the
  // order of chroma of the frame that is worked on, unless the operation says otherwise.
  virtual Result run(const Frames& frames, int runs = 1) const = 0;

 protected:
  void check_count(int frames) const;
};

// Counts the bytes that a call may touch.
struct Room {
  size_t luma = 0;           // from the first byte of the plane on
  size_t before_chroma = 0;  // in front of the plane
  size_t chroma = 0;         // from the first byte of the plane on
};

// Copies the picture into the layout of `like`, a frame of its size, with the room around its
// planes that a call takes. A fixed layout stays as it is, whatever runs into what; in others the
// chroma plane moves back, so that the room of both planes is apart.
Frame roomy_copy(const Frame& picture, const Frame& like, const Room& room);

// Copies a picture into a frame of its size: with its padding where the planes lie alike, and with
// the chroma order of `to`.
void copy_picture(const Frame& from, Frame& to);

// Throws an Error unless all frames have one size.
void expect_one_size(const Frames& frames);

// Throws an Error that names --stride unless the frame's rows are at most `most` bytes apart;
// `what` ends the text, such as "chroma is denoised with".
void expect_stride(const Frame& frame, size_t most, const char* what);

// Throws an Error unless the library's code is 0.
void expect_accepted(uint32_t code);

// Starts the library's pool unless it runs.
void start_pool();

}  // namespace zavri::tools
