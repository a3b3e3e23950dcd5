#include "platform/host/gaussian.h"

#include <algorithm>
#include <iterator>

namespace zavri {
namespace {

// Columns that are worked at a time, so that their sums stay on the stack and in the nearest cache.
constexpr size_t kTile = 2048;

class Blur {
 public:
  Blur(const uint8_t* from, size_t width, size_t height)
      : from_(from), width_(width), height_(height) {}

  // Writes to[first, last) of row y.
  void row(size_t y, size_t first, size_t last, uint8_t* to) {
    const uint8_t* rows[2 * kGaussianReach + 1];
    for (size_t x = first; x < last; x += kTile) {
      const size_t count = std::min(kTile, last - x);
      // Sums that are needed and exist: of the columns [left, right).
      const size_t left = x - std::min(x, kGaussianReach);
      const size_t right = std::min(x + count + kGaussianReach, width_);
      for (size_t j = 0; j < std::size(rows); ++j) {
        rows[j] = from_ + row_at(y, j) * width_ + left;
      }
      uint16_t* const first_sum = sums_ + (left + kGaussianReach - x);
      kernels_.down(rows, right - left, first_sum);
      std::fill(sums_, first_sum, *first_sum);
      uint16_t* const end = first_sum + (right - left);
      std::fill(end, sums_ + count + 2 * kGaussianReach, end[-1]);
      kernels_.along(sums_, count, to + x);
    }
  }

 private:
  // Row y - kGaussianReach + j, or the nearest one inside.
  size_t row_at(size_t y, size_t j) const {
    return std::min(std::max(y + j, kGaussianReach) - kGaussianReach, height_ - 1);
  }

  const uint8_t* const from_;
  const size_t width_;
  const size_t height_;
  const GaussianKernels& kernels_ = gaussian_kernels();
  uint16_t sums_[kTile + 2 * kGaussianReach];
};

}  // namespace

void blur_gaussian(const uint8_t* from, size_t width, size_t height, uint8_t* to, bool borders) {
  const size_t edge = borders ? 0 : kGaussianReach;
  if (width <= 2 * edge || height <= 2 * edge) return;
  Blur blur(from, width, height);
  for (size_t y = edge; y < height - edge; ++y) {
    blur.row(y, edge, width - edge, to + y * width);
  }
}

}  // namespace zavri
