#include "tools/images/metrics.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace zavri::tools {
namespace {

// A plane is every `step`-th byte of rows of `pitch` bytes.
struct Samples {
  const uint8_t* first;
  size_t step;
  size_t pitch;
  int width;
  int height;

  int at(int x, int y) const { return first[static_cast<size_t>(y) * pitch + x * step]; }
};

struct BlockSums {
  int64_t a = 0, b = 0, aa = 0, bb = 0, ab = 0;

  void add(const BlockSums& other) {
    a += other.a;
    b += other.b;
    aa += other.aa;
    bb += other.bb;
    ab += other.ab;
  }
};

constexpr int kBlock = 4;

BlockSums sums_of_block(const Samples& a, const Samples& b, int left, int top) {
  BlockSums sums;
  for (int y = top; y < top + kBlock; ++y) {
    for (int x = left; x < left + kBlock; ++x) {
      const int64_t p = a.at(x, y);
      const int64_t q = b.at(x, y);
      sums.add({p, q, p * p, q * q, p * q});
    }
  }
  return sums;
}

// Returns the index of one window of `count` samples, with the usual constants for 8 bits.
double ssim_of(const BlockSums& sums, double count) {
  constexpr double kC1 = 0.01 * 255 * 0.01 * 255;
  constexpr double kC2 = 0.03 * 255 * 0.03 * 255;
  const double mean_a = sums.a / count;
  const double mean_b = sums.b / count;
  const double variance_a = sums.aa / count - mean_a * mean_a;
  const double variance_b = sums.bb / count - mean_b * mean_b;
  const double covariance = sums.ab / count - mean_a * mean_b;
  return (2 * mean_a * mean_b + kC1) * (2 * covariance + kC2) /
         ((mean_a * mean_a + mean_b * mean_b + kC1) * (variance_a + variance_b + kC2));
}

// Takes windows of two by two blocks; a plane smaller than one window has none and counts as 1.
double ssim(const Samples& a, const Samples& b) {
  const int columns = a.width / kBlock;
  const int rows = a.height / kBlock;
  std::vector<BlockSums> above(static_cast<size_t>(columns));
  std::vector<BlockSums> current(static_cast<size_t>(columns));
  double sum = 0;
  int windows = 0;
  for (int row = 0; row < rows; ++row) {
    for (int c = 0; c < columns; ++c) {
      current[c] = sums_of_block(a, b, c * kBlock, row * kBlock);
      if (row == 0 || c == 0) continue;
      BlockSums window = current[c];
      for (const BlockSums& block : {current[c - 1], above[c], above[c - 1]}) window.add(block);
      sum += ssim_of(window, 4 * kBlock * kBlock);
      ++windows;
    }
    above.swap(current);
  }
  return windows == 0 ? 1 : sum / windows;
}

PlaneDifference compare_plane(const char* name, const Samples& a, const Samples& b) {
  double squares = 0;
  int largest = 0;
  for (int y = 0; y < a.height; ++y) {
    int64_t row_squares = 0;
    for (int x = 0; x < a.width; ++x) {
      const int difference = std::abs(a.at(x, y) - b.at(x, y));
      row_squares += difference * difference;
      largest = std::max(largest, difference);
    }
    squares += static_cast<double>(row_squares);
  }
  const double mean = squares / (static_cast<double>(a.width) * a.height);
  const double psnr =
      mean > 0 ? 10 * std::log10(255.0 * 255.0 / mean) : std::numeric_limits<double>::infinity();
  return {name, psnr, ssim(a, b), largest};
}

Samples plane_of(const Frame& frame, int plane) {
  const size_t pitch = frame.layout().stride;
  if (plane == 0) return {frame.luma_row(0), 1, pitch, frame.width(), frame.height()};
  const bool first = (plane == 1) == (frame.order() == ChromaOrder::kUv);
  return {frame.chroma_row(0) + (first ? 0 : 1), 2, pitch, frame.width() / 2, frame.height() / 2};
}

}  // namespace

std::vector<PlaneDifference> compare(const Frame& a, const Frame& b) {
  const auto plane = [&](const char* name, int index) {
    return compare_plane(name, plane_of(a, index), plane_of(b, index));
  };
  return {plane("Y", 0), plane("U", 1), plane("V", 2)};
}

}  // namespace zavri::tools
