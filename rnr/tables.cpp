#include "rnr/tables.h"

#include <algorithm>
#include <cstdlib>

#include "include/zavricustpro.h"
#include "rnr/weights.h"

namespace zavri {

RnrState g_rnr_state;

namespace {

constexpr uint32_t kGrid = 4;

void place_tiles(RnrState& state) {
  const uint32_t tile_width = state.width / kGrid;
  const uint32_t tile_height = state.height / kGrid;
  T_RnrTile* tile = state.tiles;
  for (uint32_t row = 0; row < kGrid; ++row) {
    for (uint32_t column = 0; column < kGrid; ++column) {
      const bool last_row = row == kGrid - 1;
      const bool last_column = column == kGrid - 1;
      if (row != 0 && !last_row && column != 0 && !last_column) continue;
      const uint32_t x = column * tile_width;
      const uint32_t y = row * tile_height;
      *tile++ = {static_cast<int32_t>(x), static_cast<int32_t>(y),
                 static_cast<int32_t>(last_column ? state.width - x : tile_width),
                 static_cast<int32_t>(last_row ? state.height - y : tile_height)};
    }
  }
}

void allocate_buffers(RnrState& state) {
  for (uint32_t k = 0; k < kRnrTiles; ++k) {
    const T_RnrTile& tile = state.tiles[k];
    const uint32_t bytes = static_cast<uint32_t>(tile.width) * static_cast<uint32_t>(tile.height);
    const auto allocate = [bytes] { return static_cast<uint8_t*>(malloc(bytes)); };
    state.buffers[k] = {allocate(), allocate(), allocate(), allocate()};
  }
}

void free_buffers(RnrState& state) {
  for (RnrBuffers& buffers : state.buffers) {
    free(buffers.blur_weight);
    free(buffers.keep_weight);
    free(buffers.blurred);
    free(buffers.tile_copy);
    buffers = {};
  }
}

WeightRule weight_rule(const RnrState& state) {
  const auto radius = static_cast<int16_t>(std::min(state.width, state.height) / 4 - 1);
  const int32_t start = int32_t{radius} * radius;
  const auto span = static_cast<int32_t>(state.full_radius - static_cast<uint32_t>(start));
  return {start, span, static_cast<uint8_t>(state.strength_percent * 128 / 100)};
}

}  // namespace
}  // namespace zavri

uint32_t zavri_mp_RNR_init_base(uint32_t width, uint32_t height, uint32_t stride,
                                uint32_t radius_percent, int32_t strength_percent) {
  zavri::RnrState& state = zavri::g_rnr_state;
  // The strength is left out on purpose: alone it changes nothing, and is not even kept.
  if (width == state.width && height == state.height && stride == state.stride &&
      radius_percent == state.radius_percent) {
    return 0;
  }
  if (state.initialised) zavri::free_buffers(state);

  state.width = width;
  state.height = height;
  state.stride = stride;
  state.radius_percent = radius_percent;
  state.strength_percent = static_cast<uint32_t>(strength_percent);
  const uint32_t center_x = (width >> 1) & 0x7fff;
  const uint32_t center_y = (height >> 1) & 0x7fff;
  state.center_x = static_cast<int32_t>(center_x);
  state.center_y = static_cast<int32_t>(center_y);
  state.full_radius = (center_x * center_x + center_y * center_y) * radius_percent / 100;
  zavri::place_tiles(state);
  zavri::allocate_buffers(state);
  state.initialised = true;
  return 1;
}

void zavri_mp_RNR_init_weight(const void* tile_number) {
  if (tile_number == nullptr) return;
  const zavri::RnrState& state = zavri::g_rnr_state;
  const uint32_t number = *static_cast<const uint32_t*>(tile_number);
  const T_RnrTile& tile = state.tiles[number];
  if (zavri::is_empty(tile)) return;

  const zavri::WeightRule rule = zavri::weight_rule(state);
  const zavri::WeighFunction weigh = zavri::weigh_kernel();
  const size_t width = static_cast<size_t>(tile.width);
  for (int32_t row = 0; row < tile.height; ++row) {
    const size_t at = static_cast<size_t>(row) * width;
    weigh(state.buffers[number].blur_weight + at, state.buffers[number].keep_weight + at, width,
          tile.x - state.center_x, tile.y + row - state.center_y, rule);
  }
}
