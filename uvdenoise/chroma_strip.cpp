#include "uvdenoise/chroma_strip.h"

#include <algorithm>

#include "uvdenoise/fill_grid.h"

namespace zavri {
namespace {

// Counts are 16 bits wide; planes that are too small for their window let them wrap.
struct Strip {
  Strip(uint32_t number, const T_UVDenoiseParam& param);

  uint8_t* start;
  uint16_t rows;
  uint16_t grid_rows;
  uint16_t grid_columns;
  bool last;
};

Strip::Strip(uint32_t number, const T_UVDenoiseParam& param) : last(number >= kZavriLastStrip) {
  const uint32_t quarter = param.height / kZavriStrips;
  start = param.uv_plane + size_t{param.stride} * number * quarter;
  rows = static_cast<uint16_t>(last ? param.height - kZavriLastStrip * quarter : quarter);
  grid_rows = rows / 2;
  grid_columns = static_cast<uint16_t>(param.width / 4);
}

// The grid's rows are addressed with the low 15 bits of the stride.
Grid grid_of(const Strip& strip, const T_UVDenoiseParam& param) {
  const ptrdiff_t row_step = 2 * static_cast<ptrdiff_t>(param.stride & 0x7fff);
  return {strip.start, strip.grid_rows, strip.grid_columns, row_step};
}

uint16_t middle_columns(const Strip& strip, int reach) {
  return static_cast<uint16_t>(strip.grid_columns - 2 * reach);
}

// The middle reaches into the next strip where there is one.
uint16_t middle_rows(const Strip& strip, int reach) {
  return static_cast<uint16_t>(strip.grid_rows - (strip.last ? 2 * reach : 0));
}

void fill(const Strip& strip, uint32_t number, const T_UVDenoiseParam& param) {
  UV_denoise_fill_grid(strip.start, static_cast<uint16_t>(param.width), strip.rows,
                       static_cast<uint16_t>(param.stride), number);
}

Weights weights_of(const T_UVDenoiseParam& param) {
  Weights weights{};
  weights.threshold = param.threshold;
  std::copy_n(param.weight_table, std::max<int>(param.threshold, 0), weights.of);
  return weights;
}

}  // namespace

void weighted_denoise(const Taps& taps, uint32_t number, const T_UVDenoiseParam& param) {
  const Strip strip(number, param);
  const Grid grid = grid_of(strip, param);
  const Weights weights = weights_of(param);
  const ChromaWindowKernels& kernels = chroma_window_kernels();
  kernels.weighted_rows(grid, row_pass(taps, middle_columns(strip, taps.reach)), weights);
  kernels.weighted_columns(grid, column_pass(taps, middle_rows(strip, taps.reach)), weights);
  fill(strip, number, param);
}

void tolerant_denoise(uint32_t number, const T_UVDenoiseParam& param) {
  constexpr int kReach = kTaps11.reach;
  const Strip strip(number, param);
  const Grid grid = grid_of(strip, param);
  const ChromaWindowKernels& kernels = chroma_window_kernels();
  kernels.tolerant_rows(grid, middle_pass(kReach, middle_columns(strip, kReach)));
  kernels.tolerant_columns(grid, middle_pass(kReach, middle_rows(strip, kReach)));
  fill(strip, number, param);
}

}  // namespace zavri
