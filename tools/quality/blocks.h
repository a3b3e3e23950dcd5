#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "tools/images/frame.h"

// Frames are divided into blocks of 8x8 pixels; pixels behind the last whole block do not count.
namespace zavri::tools {

constexpr int kBlockSide = 8;

// A block is columns [8x, 8x + 8) and rows [8y, 8y + 8) of the frame.
struct Block {
  uint16_t x = 0;
  uint16_t y = 0;
};
using Blocks = std::vector<Block>;

Blocks all_blocks(const Frame& frame);

// Borrows the luma or the chroma of a frame. A block has 8 bytes a row in both.
//
//   luma     8 rows, 1 channel      Y Y Y Y Y Y Y Y
//   chroma   4 rows, 2 channels     U V U V U V U V
class BlockPlane {
 public:
  static BlockPlane luma_of(const Frame& frame);
  static BlockPlane chroma_of(const Frame& frame);

  int rows() const { return kBlockSide / channels_; }
  int channels() const { return channels_; }
  const uint8_t* row(const Block& block, int y) const {
    return first_ +
           stride_ * (static_cast<size_t>(block.y) * static_cast<size_t>(rows()) +
                      static_cast<size_t>(y)) +
           size_t{kBlockSide} * block.x;
  }

 private:
  BlockPlane(const uint8_t* first, size_t stride, int channels)
      : first_(first), stride_(stride), channels_(channels) {}

  const uint8_t* first_;
  size_t stride_;
  int channels_;
};

// Returns the mean of the block's bytes.
double level_of(const BlockPlane& plane, const Block& block);

// Returns the variance of the block's samples, in chroma the sum of both channels'.
double detail_of(const BlockPlane& plane, const Block& block);

// Returns the mean over all samples of the block or the blocks, or 0 without blocks.
double mean_square_difference(const BlockPlane& a, const BlockPlane& b, const Block& block);
double mean_square_difference(const BlockPlane& a, const BlockPlane& b, const Blocks& blocks);

// Returns the mean square of the difference's coarse part, which is its means over cells of 4x4
// samples, without what white noise has in it: the mean of n samples of variance v has the variance
// v / n.
double coarse_mean_square(const BlockPlane& a, const BlockPlane& b, const Blocks& blocks);

}  // namespace zavri::tools
