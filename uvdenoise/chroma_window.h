#pragma once

#include <cstddef>
#include <cstdint>

#include "simd/builds.h"

namespace zavri {

// Kernels of the chroma denoise. They filter the samples of a grid, every second (U, V) pair of
// every second chroma row, in place and with a one-dimensional window. Samples are filtered in
// order, so that those before the centre are already filtered ones.
//
//   row 0   UV .. UV .. UV ..      grid column j is at byte 4j of its row
//           .. .. .. .. .. ..
//   row 1   UV .. UV .. UV ..      row_step bytes after row 0
struct Grid {
  uint8_t* start;
  uint32_t rows;
  uint32_t columns;
  ptrdiff_t row_step;
};
inline constexpr ptrdiff_t kColumnStep = 4;

// A Window says how many samples on either side of the centre are its neighbours: as many on both,
// or all on one.
struct Window {
  int before;
  int after;
};
// A window's before + after lies within the first two bounds; for the plain mean it is at most the
// third.
inline constexpr int kShortestWindow = 6;
inline constexpr int kLongestWindow = 18;
inline constexpr int kLongestTolerantWindow = 10;

// A Span is the positions along a row or a column that are filtered with one window.
struct Span {
  ptrdiff_t from;
  uint32_t count;
  Window window;
};

// A Pass filters its spans in their order: a border, the middle, a border.
struct Pass {
  Span spans[3];
};

// The windows of the weighted mean differ in these numbers of neighbours. In the middle there are
// `reach` on either side of the centre. At the left border there are `left_border` to the right, at
// the right border one less to the left, and at the upper and lower borders 2 * reach inwards.
struct Taps {
  int reach;
  int left_border;
};
inline constexpr Taps kTaps7 = {3, 10};
inline constexpr Taps kTaps11 = {5, 15};
inline constexpr Taps kTaps15 = {7, 15};
inline constexpr Taps kTaps19 = {9, 15};

// Returns the pass over `middle` samples, all but the first and the last `reach` of a line.
constexpr Pass middle_pass(int reach, uint32_t middle) {
  return {{{reach, middle, {reach, reach}}}};
}

// Returns the pass over the first `reach` samples of a line, then the `middle` samples after them,
// then the last `reach` of the middle a second time. The line's last `reach` samples are never
// filtered: of 20 with a reach of 3 these are 0 .. 2, 3 .. 16 and 14 .. 16.
constexpr Pass bordered_pass(int reach, uint32_t middle, int after_first, int before_last) {
  const auto border = static_cast<uint32_t>(reach);
  return {{{0, border, {0, after_first}},
           {reach, middle, {reach, reach}},
           {static_cast<ptrdiff_t>(middle), border, {before_last, 0}}}};
}
constexpr Pass row_pass(const Taps& taps, uint32_t middle) {
  return bordered_pass(taps.reach, middle, taps.left_border, taps.left_border - 1);
}
constexpr Pass column_pass(const Taps& taps, uint32_t middle) {
  return bordered_pass(taps.reach, middle, 2 * taps.reach, 2 * taps.reach);
}

// The weighted mean gives the centre this weight, and a neighbour whose U or V, whichever is
// farther, differs by d from the centre's the weight of[d] where d < threshold; others do not
// count.
inline constexpr int kCentreWeight = 64;
struct Weights {
  int8_t of[128];  // 0 from the threshold on
  int threshold;
};

// The plain mean counts a neighbour whose U is within this of the centre's and whose V is not as
// much below it; how far V lies above does not matter.
inline constexpr int kFixedTolerance = 19;

struct ChromaWindowKernels {
  // The kernels run a pass along every row or down every column of the grid.
  void (*weighted_rows)(const Grid& grid, const Pass& pass, const Weights& weights);
  void (*weighted_columns)(const Grid& grid, const Pass& pass, const Weights& weights);

  void (*tolerant_rows)(const Grid& grid, const Pass& pass);
  void (*tolerant_columns)(const Grid& grid, const Pass& pass);
};

const ChromaWindowKernels& chroma_window_kernels(PlainBuild);
const ChromaWindowKernels& chroma_window_kernels(Vector16Build);
const ChromaWindowKernels& chroma_window_kernels(Vector32Build);

inline const ChromaWindowKernels& chroma_window_kernels(Build build = best_build()) {
  return pick_build(
      build, [](auto tag) -> const ChromaWindowKernels& { return chroma_window_kernels(tag); });
}

}  // namespace zavri
