#include "autoshoot/luma_window.h"
#include "autoshoot/row_sums.h"

namespace zavri {
namespace {

// Adds up the differences of all samples from those below them.
uint32_t vertical_differences(const LumaWindow& window) {
  const RowSumKernels& sums = row_sum_kernels();
  uint32_t sum = 0;
  for (size_t r = 0; r + 1 < window.height; ++r) {
    sum += sums.differences(window.row(r), window.row(r + 1), window.width);
  }
  return sum;
}

// Adds up the differences of all samples from those below them and, in groups of four rows, from
// those to their right; rows that fill no group take no part in the second sum. One walk serves
// both, so that a row comes from memory once.
uint32_t all_differences(const LumaWindow& window) {
  if (window.width < 2) return vertical_differences(window);
  constexpr size_t kGroupRows = 4;
  const size_t neighbours = window.width - 1;
  // The count of groups and the jump from one to the next are kept in 16 bits. The jump misses the
  // row's start on purpose: in a rectangle at column 5 group 1 begins at column 4 and group 2 at
  // column 3. From 4 * pitch - width = 65536 on the jump is cut, and groups begin elsewhere.
  const size_t groups = (window.height / kGroupRows) & 0xffff;
  const size_t step = neighbours + ((kGroupRows * window.pitch - window.width) & 0xffff);
  const RowSumKernels& sums = row_sum_kernels();
  uint32_t sum = 0;
  for (size_t r = 0; r < window.height; ++r) {
    if (r + 1 < window.height) {
      sum += sums.differences(window.row(r), window.row(r + 1), window.width);
    }
    const size_t group = r / kGroupRows;
    if (group < groups) {
      const uint8_t* const row = window.first + group * step + r % kGroupRows * window.pitch;
      sum += sums.differences(row, row + 1, neighbours);
    }
  }
  return sum;
}

// Adds up the samples of the rows [from, from + height).
uint32_t sample_sum(const LumaWindow& window, size_t from, size_t height) {
  const RowSumKernels& sums = row_sum_kernels();
  uint32_t sum = 0;
  for (size_t r = from; r < from + height; ++r) sum += sums.samples(window.row(r), window.width);
  return sum;
}

}  // namespace
}  // namespace zavri

uint32_t zavri_auto_shoot_opt_get_FV_value(const uint8_t* luma, const T_OptRect* rect,
                                           uint32_t image_width, uint32_t image_height) {
  const auto window = zavri::open_window(luma, rect, image_width, image_height);
  if (!window) return 0;
  return zavri::all_differences(*window);
}

uint32_t zavri_auto_shoot_opt_get_FV_value_derivation(const uint8_t* luma, uint32_t image_width,
                                                      uint32_t image_height) {
  const auto window = zavri::open_window(luma, &tOptRect, image_width, image_height);
  return window ? zavri::vertical_differences(*window) : 0;
}

uint32_t zavri_auto_shoot_opt_get_FV_value_average(const uint8_t* luma, uint32_t image_width,
                                                   uint32_t image_height) {
  const auto window = zavri::open_window(luma, &tOptRect, image_width, image_height);
  if (!window) return 0;
  const auto area = static_cast<uint32_t>(window->height * window->width);
  if (area == 0) return 0;
  // On purpose the mean is that of the rows one below those whose deviations are summed: of
  // rows 1..4 for a rectangle with the rows 0..3. It is a byte as long as the area fits 32 bits.
  const uint32_t mean = zavri::sample_sum(*window, 1, window->height) / area;
  const zavri::RowSumKernels& sums = zavri::row_sum_kernels();
  uint32_t sum = 0;
  // The walk goes from the bottom up, because the rows that were read last are still near.
  for (size_t r = window->height; r-- > 0;) {
    sum += sums.deviations(window->row(r), window->width, static_cast<uint8_t>(mean));
  }
  return sum;
}

uint32_t zavri_auto_shoot_opt_get_bright(const uint8_t* luma, const T_OptRect* rect,
                                         uint32_t image_width, uint32_t image_height) {
  const auto window = zavri::open_window(luma, rect, image_width, image_height);
  if (!window || window->height < 2) return 0;
  // The bottom row stays out, so that brightness walks the rows of the vertical differences.
  return zavri::sample_sum(*window, 0, window->height - 1);
}
