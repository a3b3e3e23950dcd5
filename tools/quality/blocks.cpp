#include "tools/quality/blocks.h"

#include <algorithm>

namespace zavri::tools {
namespace {

struct Sums {
  int sum = 0;
  int squares = 0;

  void add(int value) {
    sum += value;
    squares += value * value;
  }
};

int square_differences(const BlockPlane& a, const BlockPlane& b, const Block& block) {
  int squares = 0;
  for (int y = 0; y < a.rows(); ++y) {
    const uint8_t* const p = a.row(block, y);
    const uint8_t* const q = b.row(block, y);
    for (int x = 0; x < kBlockSide; ++x) {
      const int difference = p[x] - q[x];
      squares += difference * difference;
    }
  }
  return squares;
}

constexpr int kCell = 4;
constexpr int kCellSamples = kCell * kCell;

// Returns the square of the mean difference in a cell, without what white noise adds to it. The
// cell's first sample is byte `x` of row `y` of the block.
double coarse_square(const BlockPlane& a, const BlockPlane& b, const Block& block, int x, int y) {
  Sums sums;
  for (int row = y; row < y + kCell; ++row) {
    const uint8_t* const p = a.row(block, row) + x;
    const uint8_t* const q = b.row(block, row) + x;
    for (int i = 0; i < kCell; ++i) sums.add(p[i * a.channels()] - q[i * a.channels()]);
  }
  const double mean = static_cast<double>(sums.sum) / kCellSamples;
  const double variance = (sums.squares - sums.sum * mean) / (kCellSamples - 1);
  return mean * mean - variance / kCellSamples;
}

}  // namespace

Blocks all_blocks(const Frame& frame) {
  Blocks blocks;
  for (int y = 0; y < frame.height() / kBlockSide; ++y) {
    for (int x = 0; x < frame.width() / kBlockSide; ++x) {
      blocks.push_back({static_cast<uint16_t>(x), static_cast<uint16_t>(y)});
    }
  }
  return blocks;
}

BlockPlane BlockPlane::luma_of(const Frame& frame) {
  return {frame.luma_row(0), frame.layout().stride, 1};
}

BlockPlane BlockPlane::chroma_of(const Frame& frame) {
  return {frame.chroma_row(0), frame.layout().stride, 2};
}

double level_of(const BlockPlane& plane, const Block& block) {
  int sum = 0;
  for (int y = 0; y < plane.rows(); ++y) {
    const uint8_t* const row = plane.row(block, y);
    for (int x = 0; x < kBlockSide; ++x) sum += row[x];
  }
  return static_cast<double>(sum) / (kBlockSide * plane.rows());
}

double detail_of(const BlockPlane& plane, const Block& block) {
  // Chroma bytes alternate between the channels, luma bytes fall into both sums.
  Sums even;
  Sums odd;
  for (int y = 0; y < plane.rows(); ++y) {
    const uint8_t* const row = plane.row(block, y);
    for (int x = 0; x < kBlockSide; x += 2) {
      even.add(row[x]);
      odd.add(row[x + 1]);
    }
  }
  const auto variance = [](const Sums& sums, double samples) {
    const double mean = sums.sum / samples;
    return sums.squares / samples - mean * mean;
  };
  const double half = kBlockSide * plane.rows() / 2.0;
  if (plane.channels() == 2) return variance(even, half) + variance(odd, half);
  return variance({even.sum + odd.sum, even.squares + odd.squares}, 2 * half);
}

double mean_square_difference(const BlockPlane& a, const BlockPlane& b, const Block& block) {
  return static_cast<double>(square_differences(a, b, block)) / (kBlockSide * a.rows());
}

double mean_square_difference(const BlockPlane& a, const BlockPlane& b, const Blocks& blocks) {
  if (blocks.empty()) return 0;
  int64_t squares = 0;
  for (const Block& block : blocks) squares += square_differences(a, b, block);
  const double samples = static_cast<double>(blocks.size()) * kBlockSide * a.rows();
  return static_cast<double>(squares) / samples;
}

double coarse_mean_square(const BlockPlane& a, const BlockPlane& b, const Blocks& blocks) {
  double squares = 0;
  int64_t cells = 0;
  for (const Block& block : blocks) {
    for (int channel = 0; channel < a.channels(); ++channel) {
      for (int y = 0; y < a.rows(); y += kCell) {
        for (int x = channel; x < kBlockSide; x += kCell * a.channels()) {
          squares += coarse_square(a, b, block, x, y);
          ++cells;
        }
      }
    }
  }
  return cells == 0 ? 0 : std::max(0.0, squares / static_cast<double>(cells));
}

}  // namespace zavri::tools
