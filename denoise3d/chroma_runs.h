#pragma once

#include <cstddef>
#include <cstdint>

#include "simd/builds.h"

namespace zavri {

// Kernels of the run smoothing. A run is a stretch of (U, V) pairs that differ from its first pair,
// the anchor, by less than kRunTolerance in U and in V; the pair that differs more is the next
// anchor. Every pair of a run becomes the run's mean, rounded half up.
inline constexpr int kRunTolerance = 20;

struct ChromaRunKernels {
  // Smooths the runs along the pairs at the even offsets of plane[0, bytes).
  void (*smooth_sequence)(uint8_t* plane, size_t bytes);

  // Smooths the runs down each column of pairs, at the offsets 0, 2, .. below `width` of its rows.
  void (*smooth_columns)(uint8_t* plane, size_t width, size_t rows, size_t stride);
};

const ChromaRunKernels& chroma_run_kernels(PlainBuild);
const ChromaRunKernels& chroma_run_kernels(Vector16Build);
const ChromaRunKernels& chroma_run_kernels(Vector32Build);

inline const ChromaRunKernels& chroma_run_kernels(Build build = best_build()) {
  return pick_build(build,
                    [](auto tag) -> const ChromaRunKernels& { return chroma_run_kernels(tag); });
}

}  // namespace zavri
