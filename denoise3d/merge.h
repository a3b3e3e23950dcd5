#pragma once

#include <cstddef>
#include <cstdint>

#include "simd/builds.h"

namespace zavri {

// The row kernel of the multi-frame denoise merges the co-sited samples of the other frames that
// agree with the reference frame into it. One position is a chroma pair and its 2x2 luma block,
// whose left column lies at the same byte offset of its rows as U lies of the chroma row:
//
//   offset b, b+1     uv: U V     other_uv[k]: U V      other_y[k]: only the byte at b is read
//                     y0: . .
//                     y1: . .
struct MergeRow {
  uint8_t* uv;
  uint8_t* y0;
  uint8_t* y1;
  const uint8_t* other_uv[3];
  const uint8_t* other_y[3];
};

// Limits are the largest differences that are still accepted; a threshold t accepts up to t - 1. A
// frame agrees if its U and its V are within `chroma` of the reference's, and merged luma is
// written if it is within `luma`. The kinds kEdges and kEdgesLuma take both limits of a position
// from the ramp instead, which has it in both bytes of the position.
struct MergeLimits {
  uint8_t chroma;
  uint8_t luma;
  const uint8_t* ramp;
};

enum class MergeKind {
  kWhole,      // chroma and luma
  kChroma,     // chroma alone; the luma pointers are not used
  kEdges,      // chroma and luma, limits from the ramp
  kEdgesLuma,  // luma alone, limits from the ramp
};
inline constexpr int kMergeKinds = 4;

// Merges the positions at offsets 0, 2, .. below `bytes` (even).
using MergeFunction = void (*)(const MergeRow& row, size_t bytes, const MergeLimits& limits);

struct MergeKernels {
  MergeFunction functions[kMergeKinds][3];

  // `others` is the number of frames besides the reference, 1..3.
  MergeFunction get(MergeKind kind, int others) const {
    return functions[static_cast<int>(kind)][others - 1];
  }
};

const MergeKernels& merge_kernels(PlainBuild);
const MergeKernels& merge_kernels(Vector16Build);
const MergeKernels& merge_kernels(Vector32Build);

inline const MergeKernels& merge_kernels(Build build = best_build()) {
  return pick_build(build, [](auto tag) -> const MergeKernels& { return merge_kernels(tag); });
}

}  // namespace zavri
