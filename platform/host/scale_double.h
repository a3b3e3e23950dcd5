#pragma once

#include <cstddef>
#include <cstdint>

#include "simd/builds.h"

namespace zavri::host {

// These kernels scale planes to exactly twice the width and the height, with the bytes of the
// kernels of platform/host/scale_rows.h. Two samples of the result lie between two neighbours of
// the source, at 1/4 and 3/4 of the way, and two rows likewise:
//
//     a . . b        the neighbours a, b, c and d of the source
//     . A B .        and the four samples of the result between them
//     . C D .
//     c . . d
//
// The first or last sample of the source stands for those outside.
struct DoubleKernels {
  size_t shortest;  // the least count for which these functions may be called

  // Fills upper[0, 2 * count) and lower[0, 2 * count), the rows between the source rows `above` and
  // `below`.
  void (*linear)(const uint8_t* above, const uint8_t* below, size_t count, uint8_t* upper,
                 uint8_t* lower);

  // Fills to[0, 2 * count), the row at 1/4 of the way from rows[1] to rows[2]. Uses
  // sums[-1, count].
  void (*spline)(const uint8_t* const* rows, size_t count, int16_t* sums, uint8_t* to);
};

const DoubleKernels& double_kernels(PlainBuild);
const DoubleKernels& double_kernels(Vector16Build);
const DoubleKernels& double_kernels(Vector32Build);

inline const DoubleKernels& double_kernels(Build build = best_build()) {
  return pick_build(build, [](auto tag) -> const DoubleKernels& { return double_kernels(tag); });
}

}  // namespace zavri::host
