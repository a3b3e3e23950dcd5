#pragma once

#include <cstddef>
#include <cstdint>

#include "simd/builds.h"

namespace zavri {

// A block is 8 bytes of a chroma row: two cells of a pair of the grid and a pair to fill.
inline constexpr size_t kFillBlock = 8;

// Row kernels of the grid's fill step. All means are rounded down.
struct FillRowKernels {
  // Fills each pair between two of the grid with their mean, in `blocks` blocks; reads the first
  // pair of the block after them, too. The plain rule writes the filled pairs alone, the vector
  // forms write the grid's pairs back.
  void (*fill_row)(uint8_t* row, size_t blocks);

  void (*average_rows)(uint8_t* to, const uint8_t* above, const uint8_t* below, size_t bytes);
};

const FillRowKernels& fill_row_kernels(PlainBuild);
const FillRowKernels& fill_row_kernels(Vector16Build);
const FillRowKernels& fill_row_kernels(Vector32Build);

inline const FillRowKernels& fill_row_kernels(Build build = best_build()) {
  return pick_build(build, [](auto tag) -> const FillRowKernels& { return fill_row_kernels(tag); });
}

}  // namespace zavri
