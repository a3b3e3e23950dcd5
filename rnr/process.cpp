#include <cstring>

#include "include/zavricustpro.h"
#include "platform/fastcv.h"
#include "rnr/blend.h"
#include "rnr/tables.h"

namespace zavri {
namespace {

constexpr uint8_t kBlurBorder = 1;

// The rows of one tile, in the plane and in its buffers.
class TileRows {
 public:
  TileRows(uint8_t* plane, const T_RnrTile& tile)
      : first_(plane + size_t{g_rnr_state.stride} * static_cast<size_t>(tile.y) +
               static_cast<size_t>(tile.x)),
        width_(static_cast<size_t>(tile.width)),
        count_(static_cast<size_t>(tile.height)) {}

  void copy_from_plane(uint8_t* copy) const {
    for (size_t row = 0; row < count_; ++row) memcpy(copy + row * width_, in_plane(row), width_);
  }

  void blend_into_plane(const RnrBuffers& buffers) const {
    const BlendFunction blend = blend_kernel();
    for (size_t row = 0; row < count_; ++row) {
      const size_t at = row * width_;
      blend(in_plane(row), buffers.blurred + at, buffers.blur_weight + at, width_);
    }
  }

 private:
  uint8_t* in_plane(size_t row) const { return first_ + g_rnr_state.stride * row; }

  uint8_t* const first_;
  const size_t width_;
  const size_t count_;
};

}  // namespace
}  // namespace zavri

void zavri_mp_RNR_process_inner(const void* tile_number, void* plane) {
  if (tile_number == nullptr || plane == nullptr) return;
  const uint32_t number = *static_cast<const uint32_t*>(tile_number);
  const T_RnrTile& tile = zavri::g_rnr_state.tiles[number];
  const zavri::RnrBuffers& buffers = zavri::g_rnr_state.buffers[number];
  const zavri::TileRows rows(static_cast<uint8_t*>(plane), tile);
  const bool empty = zavri::is_empty(tile);

  if (!empty) rows.copy_from_plane(buffers.tile_copy);
  // For an empty tile as well.
  fcvFilterGaussian5x5u8(buffers.tile_copy, static_cast<uint32_t>(tile.width),
                         static_cast<uint32_t>(tile.height), buffers.blurred, zavri::kBlurBorder);
  if (!empty) rows.blend_into_plane(buffers);
}

uint32_t zavri_mp_RNR_process() { return 0; }
