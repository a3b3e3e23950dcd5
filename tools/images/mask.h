#pragma once

#include <cstdint>
#include <vector>

#include "tools/images/frame.h"

namespace zavri::tools {

// A mask is a set of pixels. As a picture it is white where a pixel is in the set, and black
// elsewhere.
class Mask {
 public:
  Mask(int width, int height);
  explicit Mask(const Picture& picture);

  int width() const { return width_; }
  int height() const { return height_; }

  void add(int x, int y) { row(y)[x] = 1; }
  bool has(int x, int y) const { return row(y)[x] != 0; }
  // Tells whether a pixel of this part is in the set. No pixel outside of the mask is.
  bool touches(int x, int y, int width, int height) const;

  // Returns the part at (x, y).
  Mask crop(int x, int y, int width, int height) const;

  Picture picture() const;

 private:
  uint8_t* row(int y) { return &set_[static_cast<size_t>(y) * static_cast<size_t>(width_)]; }
  const uint8_t* row(int y) const {
    return &set_[static_cast<size_t>(y) * static_cast<size_t>(width_)];
  }

  int width_;
  int height_;
  std::vector<uint8_t> set_;
};

}  // namespace zavri::tools
