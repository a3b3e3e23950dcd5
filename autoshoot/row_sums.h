#pragma once

#include <cstddef>
#include <cstdint>

#include "simd/builds.h"

namespace zavri {

// Row kernels of the measures. All return a sum over row[0, width), modulo 2^32.
struct RowSumKernels {
  uint32_t (*samples)(const uint8_t* row, size_t width);

  // Sums the absolute differences from other[0, width), which may overlap the row.
  uint32_t (*differences)(const uint8_t* row, const uint8_t* other, size_t width);

  // Sums the absolute deviations from a mean.
  uint32_t (*deviations)(const uint8_t* row, size_t width, uint8_t mean);
};

const RowSumKernels& row_sum_kernels(PlainBuild);
const RowSumKernels& row_sum_kernels(Vector16Build);
const RowSumKernels& row_sum_kernels(Vector32Build);

inline const RowSumKernels& row_sum_kernels(Build build = best_build()) {
  return pick_build(build, [](auto tag) -> const RowSumKernels& { return row_sum_kernels(tag); });
}

}  // namespace zavri
