#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "include/zavricustpro.h"

namespace zavri {

// The edge modes work two sections in every row of a strip. Offsets are bytes from the strip's
// first byte, the same for a chroma row and for the upper luma row of its blocks:
//
//   4 frames                            2 and 3 frames: every row starts 2*W4 bytes further
//   |left|                    |right|   |left   |               |right  |
//   |left|                    |right|           |left   |               |right  |
//   0    W4          width-W4   width   0      2*W4          width    width+2*W4   (W4 = width/4)
struct EdgeSections {
  size_t bytes;           // an even number, the length of each section
  ptrdiff_t right;        // the distance from a row's left section to its right one
  ptrdiff_t chroma_step;  // the distance from a row's left section to the next row's
  ptrdiff_t luma_step;    // the same in luma, two rows on

  explicit EdgeSections(const T_3DYuvDenoiseParam& param);
};

enum class EdgeSide { kLeft, kRight };

// A ramp gives the merge limits of one section: they fall from the frame's left edge and rise to
// its right one. Every row has the same limits, so a window onto them is kept. It moves only if a
// section is longer than the window, which none is in frames of up to 16384 pixels.
class EdgeRamp {
 public:
  static constexpr size_t kWindow = 8192;

  EdgeRamp(EdgeSide side, uint8_t threshold, uint32_t width)
      : side_(side), threshold_(threshold), quarter_(width / 4) {}

  // Returns the limits of the bytes [first, first + count) of the section; count is at most
  // kWindow.
  const uint8_t* limits(size_t first, size_t count);

 private:
  uint8_t limit(size_t b) const;

  EdgeSide side_;
  uint8_t threshold_;
  int64_t quarter_;
  size_t first_ = 0;
  size_t count_ = 0;
  std::array<uint8_t, kWindow> limits_;
};

}  // namespace zavri
