#pragma once

#include <algorithm>
#include <chrono>
#include <string>
#include <utility>
#include <vector>

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

// What one run made.
struct Result {
  Frame frame;
  double seconds = 0;  // in the library, the median of all runs
  // What the library told beside the frame: names such as "thresh_luma", and numbers.
  std::vector<std::pair<std::string, double>> figures;
  std::vector<std::string> remarks;  // of what the settings ask for and the library does not do
};

// One operation of the library: its settings, and its one call.
class Operation {
 public:
  virtual ~Operation() = default;

  // Bound to this object, the ones that are set most often first.
  virtual Settings settings() = 0;

  // How many frames one run takes.
  struct Count {
    int least;
    int most;
  };
  virtual Count takes() const { return {1, 1}; }

  // Throws an Error that names the setting, unless the settings go together and suit so many frames
  // of this size. run() checks the same.
  virtual void check(const Size& size, int frames) const = 0;

  // The size of the frame that run() makes of frames of this size.
  virtual Size result_size(const Size& size) const { return size; }

  // Runs so many times, each time on fresh copies of the frames. The result has the layout and the
  // order of chroma of the frame that is worked on, unless the operation says otherwise.
  virtual Result run(const Frames& frames, int runs = 1) const = 0;

 protected:
  void check_count(int frames) const;
};

// Bytes that a call may touch: from the first of the luma plane on, in front of the chroma plane,
// and from its first on.
struct Room {
  size_t luma = 0;
  size_t before_chroma = 0;
  size_t chroma = 0;
};

// A copy of the picture in the layout of `like`, a frame of its size, with the room around its
// planes that a call takes. A fixed layout stays as it is, whatever runs into what; in others the
// chroma plane moves back, so that the room of both planes is apart.
Frame roomy_copy(const Frame& picture, const Frame& like, const Room& room);

// Copies a picture into a frame of its size: with its padding where the planes lie alike, and with
// the chroma order of `to`.
void copy_picture(const Frame& from, Frame& to);

// The median of what work() took, in seconds; prepare() goes before each run and does not count.
template <class Prepare, class Work>
double median_seconds(int runs, Prepare prepare, Work work) {
  std::vector<double> seconds;
  for (int run = 0; run < runs; ++run) {
    prepare();
    const auto start = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    seconds.push_back(taken.count());
  }
  std::sort(seconds.begin(), seconds.end());
  return seconds[seconds.size() / 2];
}

// Throws unless all frames have one size.
void expect_one_size(const Frames& frames);

// Throws unless the library's code is 0.
void expect_accepted(uint32_t code);

// Starts the library's pool unless it runs.
void start_pool();

}  // namespace zavri::tools
