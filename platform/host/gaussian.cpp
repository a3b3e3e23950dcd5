#include "platform/host/gaussian.h"

#include <algorithm>
#include <iterator>

namespace zavri::host {
namespace {

// A band of this height fits the nearest cache, and its pages fit the processor's table of
// translations. A lower one would sum more rows twice, since each band sums those around it anew.
// The kernel takes five rows at a time.
constexpr size_t kBandRows = 15;

}  // namespace

void blur_gaussian(const uint8_t* from, size_t width, size_t height, uint8_t* to, bool borders) {
  const size_t edge = borders ? 0 : kGaussianReach;
  if (width <= 2 * edge || height <= 2 * edge) return;
  const GaussianFunction blur = gaussian_kernel();
  for (size_t y = edge; y < height - edge; y += kBandRows) {
    const size_t count = std::min(kBandRows, height - edge - y);
    const uint8_t* rows[kBandRows + 2 * kGaussianReach];
    for (size_t j = 0; j < std::size(rows); ++j) {
      const size_t row = std::max(y + j, kGaussianReach) - kGaussianReach;
      rows[j] = from + std::min(row, height - 1) * width;
    }
    blur({to + y * width, rows, count, width}, edge, width - edge);
  }
}

}  // namespace zavri::host
