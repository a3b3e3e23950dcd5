#pragma once

#include <cstdint>

// This record describes one horizontal strip of an interleaved chroma plane.
struct tagT_UvRunSmoothParam {
  uint16_t gain;   // is not used
  uint16_t level;  // is not used
  uint16_t width;  // chroma bytes per row
  uint16_t rows;
  uint16_t stride;  // bytes from row to row
  uint8_t* plane;   // points to the first U of the strip
};
using T_UvRunSmoothParam = tagT_UvRunSmoothParam;

// Smooths the strip in place: runs of (U, V) pairs that stay close to the run's first pair become
// their rounded mean, first along the strip in memory order, row padding included, then down each
// column. Pairs stand at even offsets: when rows * stride or width is odd, the last V lies one byte
// past the strip or the row.
extern "C" void uv_run_smooth(const T_UvRunSmoothParam* param);
