#pragma once

#include <cstdint>

// A tile is counted in pixels of the plane. It is empty if its width or height is not positive.
struct tagT_RnrTile {
  int32_t x;
  int32_t y;
  int32_t width;
  int32_t height;
};
using T_RnrTile = tagT_RnrTile;

namespace zavri {

// The tiles are the outer ring of a 4x4 grid, whose last column and row take the remainder.
//
//    0  1  2  3
//    4        5
//    6        7
//    8  9 10 11
inline constexpr uint32_t kRnrTiles = 12;

// Each tile has these buffers of width * height bytes.
struct RnrBuffers {
  uint8_t* blur_weight;
  uint8_t* keep_weight;  // is 128 - blur_weight; the blend computes that itself
  uint8_t* blurred;
  uint8_t* tile_copy;
};

// zavri_mp_RNR_init_base alone writes the state, while no tile is worked on. Until its first call
// all is zero, and every tile is empty.
struct RnrState {
  uint32_t width;
  uint32_t height;
  uint32_t stride;
  uint32_t radius_percent;
  uint32_t strength_percent;
  int32_t center_x;
  int32_t center_y;
  uint32_t full_radius;  // the squared distance at which the blur reaches its full weight
  bool initialised;      // tells whether there are buffers
  T_RnrTile tiles[kRnrTiles];
  RnrBuffers buffers[kRnrTiles];
};

extern RnrState g_rnr_state;

inline bool is_empty(const T_RnrTile& tile) { return tile.width <= 0 || tile.height <= 0; }

}  // namespace zavri
