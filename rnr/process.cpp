#include <cstring>

#include "include/zavricustpro.h"
#include "platform/fastcv.h"
#include "rnr/blend.h"
#include "rnr/tables.h"

namespace zavri {
namespace {

constexpr uint8_t kBlurBorder = 1;

// Returns where a row of the tile begins in the plane.
uint8_t* row_in_plane(void* plane, const T_RnrTile& tile, int32_t row) {
  return static_cast<uint8_t*>(plane) +
         size_t{g_rnr_state.stride} * static_cast<size_t>(tile.y + row) + tile.x;
}

void copy_tile(void* plane, const T_RnrTile& tile, uint8_t* copy) {
  const auto width = static_cast<size_t>(tile.width);
  for (int32_t row = 0; row < tile.height; ++row, copy += width) {
    memcpy(copy, row_in_plane(plane, tile, row), width);
  }
}

void blend_tile(void* plane, const T_RnrTile& tile, const RnrBuffers& buffers) {
  const BlendFunction blend = blend_kernel();
  const auto width = static_cast<size_t>(tile.width);
  for (int32_t row = 0; row < tile.height; ++row) {
    const size_t at = static_cast<size_t>(row) * width;
    blend(row_in_plane(plane, tile, row), buffers.tile_copy + at, buffers.blurred + at,
          buffers.blur_weight + at, width);
  }
}

}  // namespace
}  // namespace zavri

void zavri_mp_RNR_process_inner(const void* tile_number, void* plane) {
  if (tile_number == nullptr || plane == nullptr) return;
  const uint32_t number = *static_cast<const uint32_t*>(tile_number);
  const T_RnrTile& tile = zavri::g_rnr_state.tiles[number];
  const zavri::RnrBuffers& buffers = zavri::g_rnr_state.buffers[number];
  const bool empty = zavri::is_empty(tile);

  if (!empty) zavri::copy_tile(plane, tile, buffers.tile_copy);
  // On purpose the Gaussian is called for an empty tile as well: what a size of 0 does is the
  // vendor's to say.
  fcvFilterGaussian5x5u8(buffers.tile_copy, static_cast<uint32_t>(tile.width),
                         static_cast<uint32_t>(tile.height), buffers.blurred, zavri::kBlurBorder);
  if (!empty) zavri::blend_tile(plane, tile, buffers);
}

uint32_t zavri_mp_RNR_process() { return 0; }
