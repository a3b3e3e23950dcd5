#include <gtest/gtest.h>

#include "include/zavricustpro.h"
#include "platform/fastcv.h"
#include "rnr/tables.h"
#include "tests/support/allocations.h"
#include "tests/support/samples.h"
#include "tests/support/use_build.h"
#include "tests/support/vendor_calls.h"

namespace zavri::testing {
namespace {

using Bytes = std::vector<uint8_t>;

struct RnrGeometry {
  uint32_t width;
  uint32_t height;
  uint32_t stride;
  uint32_t radius_percent;
  int32_t strength_percent;
};

std::ostream& operator<<(std::ostream& out, const RnrGeometry& g) {
  return out << g.width << 'x' << g.height << " stride " << g.stride << " radius "
             << g.radius_percent << " strength " << g.strength_percent;
}

uint32_t init_base(const RnrGeometry& g) {
  return zavri_mp_RNR_init_base(g.width, g.height, g.stride, g.radius_percent, g.strength_percent);
}

// A new strength alone would keep the old tables.
void fresh_tables(const RnrGeometry& g) {
  zavri_mp_RNR_init_base(0, 0, 0, 0, 0);
  EXPECT_EQ(init_base(g), 1u);
  for (uint32_t k = 0; k < kRnrTiles; ++k) zavri_mp_RNR_init_weight(&k);
}

void process(uint8_t* plane) {
  for (uint32_t k = 0; k < kRnrTiles; ++k) zavri_mp_RNR_process_inner(&k, plane);
}

// Computes a weight straight from the pixel's place, in 32 bits.
uint8_t naive_weight(const RnrGeometry& g, int x, int y) {
  const auto square = [](uint32_t value) { return value * value; };
  const uint32_t cx = (g.width >> 1) & 0x7fff;
  const uint32_t cy = (g.height >> 1) & 0x7fff;
  const auto radius = static_cast<int16_t>(std::min(g.width, g.height) / 4 - 1);
  const uint32_t start = square(radius);
  const auto span =
      static_cast<int32_t>((square(cx) + square(cy)) * g.radius_percent / 100 - start);
  const uint32_t full = (static_cast<uint32_t>(g.strength_percent) * 128 / 100) & 0xff;
  const uint32_t distance = square(x - cx) + square(y - cy) - start;
  if (static_cast<int32_t>(distance) >= span || span == 0) return static_cast<uint8_t>(full);
  return static_cast<uint8_t>(int64_t{static_cast<int32_t>(full * distance)} / span);
}

struct Tile {
  int column;
  int row;
};
constexpr Tile kTiles[] = {{0, 0}, {1, 0}, {2, 0}, {3, 0}, {0, 1}, {3, 1},
                           {0, 2}, {3, 2}, {0, 3}, {1, 3}, {2, 3}, {3, 3}};

T_RnrTile naive_tile(const RnrGeometry& g, const Tile& tile) {
  const int width = static_cast<int>(g.width / 4);
  const int height = static_cast<int>(g.height / 4);
  return {tile.column * width, tile.row * height,
          tile.column == 3 ? static_cast<int>(g.width) - 3 * width : width,
          tile.row == 3 ? static_cast<int>(g.height) - 3 * height : height};
}

// Works tile by tile, because tiles overlap where the stride is below the width.
Bytes naive_process(const RnrGeometry& g, Bytes plane) {
  for (const Tile& place : kTiles) {
    const T_RnrTile tile = naive_tile(g, place);
    Bytes copy;
    const auto in_plane = [&](int i) -> uint8_t& {
      return plane[static_cast<size_t>(tile.y + i / tile.width) * g.stride + tile.x +
                   i % tile.width];
    };
    for (int i = 0; i < tile.width * tile.height; ++i) copy.push_back(in_plane(i));
    Bytes blurred(copy.size());
    fcvFilterGaussian5x5u8(copy.data(), tile.width, tile.height, blurred.data(), 1);
    for (int i = 0; i < tile.width * tile.height; ++i) {
      const int weight = naive_weight(g, tile.x + i % tile.width, tile.y + i / tile.width);
      in_plane(i) = static_cast<uint8_t>(
          weight < 121 ? ((128 - weight) * copy[i] + weight * blurred[i]) >> 7 : blurred[i]);
    }
  }
  return plane;
}

// Tiny planes have empty tiles and negative weights, and 2x2 at a radius of 50 % has a span of 0.
// The long planes make products and the centre wrap. Rows that overlap show in which order tiles
// are written.
constexpr RnrGeometry kGeometries[] = {
    {640, 480, 640, 100, 100},   {641, 483, 650, 80, 50},     {200, 1000, 200, 130, 94},
    {200, 301, 216, 45, 95},     {333, 57, 340, 20, 250},     {130, 130, 130, 100, -1},
    {64, 64, 64, 5, 75},         {97, 31, 100, 0, 100},       {5, 5, 5, 100, 100},
    {7, 4, 8, 100, 60},          {3, 3, 3, 100, 100},         {2, 2, 2, 50, 70},
    {2, 2, 2, 100, 100},         {1, 9, 1, 30, 200},          {1, 1, 1, 100, 100},
    {20000, 4, 20000, 100, 100}, {65544, 4, 65544, 100, 100}, {64, 64, 10, 100, 60},
};

TEST(Rnr, EveryBuildEqualsTheModel) {
  Random random(1);
  for (const RnrGeometry& g : kGeometries) {
    const Bytes plane = samples(random, Style::kUniform, g.stride * g.height + g.width + 32);
    const Bytes expected = naive_process(g, plane);
    for (const Build build : builds_here()) {
      SCOPED_TRACE(::testing::Message() << build_name(build) << ": " << g);
      const UseBuild use(build);
      fresh_tables(g);
      Bytes actual = plane;
      process(actual.data());
      EXPECT_TRUE(actual == expected);
      for (uint32_t k = 0; k < kRnrTiles; ++k) {
        const T_RnrTile tile = naive_tile(g, kTiles[k]);
        const RnrBuffers& buffers = g_rnr_state.buffers[k];
        int wrong = 0;
        for (int i = 0; i < tile.width * tile.height; ++i) {
          const int weight = naive_weight(g, tile.x + i % tile.width, tile.y + i / tile.width);
          wrong += buffers.blur_weight[i] != weight;
          wrong += buffers.keep_weight[i] != ((128 - weight) & 0xff);
        }
        ASSERT_EQ(wrong, 0) << "weights of tile " << k;
      }
    }
  }
}

TEST(Rnr, StrengthAloneChangesNothing) {
  const RnrGeometry g = {160, 120, 160, 100, 100};
  fresh_tables(g);
  const auto corner = [] { return g_rnr_state.buffers[0].blur_weight[0]; };
  EXPECT_EQ(corner(), 128);
  RnrGeometry weaker = g;
  weaker.strength_percent = 50;
  EXPECT_EQ(init_base(weaker), 0u);
  const uint32_t first_tile = 0;
  zavri_mp_RNR_init_weight(&first_tile);
  EXPECT_EQ(corner(), 128);

  const auto rebuilds = [&](auto change) {
    RnrGeometry changed = g;
    change(changed);
    return init_base(changed) == 1 && init_base(g) == 1;
  };
  EXPECT_TRUE(rebuilds([](RnrGeometry& c) { ++c.width; }));
  EXPECT_TRUE(rebuilds([](RnrGeometry& c) { ++c.height; }));
  EXPECT_TRUE(rebuilds([](RnrGeometry& c) { ++c.stride; }));
  EXPECT_TRUE(rebuilds([](RnrGeometry& c) { ++c.radius_percent; }));
}

TEST(Rnr, EveryRebuildFreesTheBuffersBefore) {
  fresh_tables({64, 48, 64, 100, 100});
  for (uint32_t i = 0; i < 1000; ++i) {
    const RnrGeometry g = {3 + i % 150, 40, 160, i, 80};
    const WatchAllocations allocations;
    ASSERT_EQ(init_base(g), 1u);
    std::vector<size_t> sizes;
    for (const Tile& place : kTiles) {
      const T_RnrTile tile = naive_tile(g, place);
      sizes.insert(sizes.end(), 4, static_cast<size_t>(tile.width) * tile.height);
    }
    ASSERT_EQ(allocations.sizes, sizes) << g;
    ASSERT_EQ(allocations.freed, 4 * kRnrTiles) << g;
  }
}

TEST(Rnr, TheGaussianIsCalledForEveryTileEmptyOrNot) {
  const RnrState saved = g_rnr_state;
  g_rnr_state = {};  // is what it is before the first call
  Bytes plane(64, 77);
  take_gaussian_calls();
  process(plane.data());
  const std::vector<GaussianCall> before_init = take_gaussian_calls();
  g_rnr_state = saved;
  EXPECT_EQ(plane, Bytes(64, 77));
  ASSERT_EQ(before_init.size(), kRnrTiles);
  for (const GaussianCall& call : before_init) EXPECT_EQ(call.width + call.height, 0u);

  fresh_tables({3, 9, 3, 100, 100});  // all columns but the last are empty
  process(plane.data());
  const std::vector<GaussianCall> calls = take_gaussian_calls();
  ASSERT_EQ(calls.size(), kRnrTiles);
  for (uint32_t k = 0; k < kRnrTiles; ++k) {
    EXPECT_EQ(calls[k].width, kTiles[k].column == 3 ? 3u : 0u);
    EXPECT_EQ(calls[k].height, kTiles[k].row == 3 ? 3u : 2u);
    EXPECT_EQ(calls[k].from, g_rnr_state.buffers[k].tile_copy);
    EXPECT_EQ(calls[k].to, g_rnr_state.buffers[k].blurred);
    EXPECT_EQ(calls[k].blur_border, 1);
  }
}

TEST(Rnr, NullPointersAreIgnored) {
  const uint32_t tile = 0;
  Bytes plane(64, 77);
  take_gaussian_calls();
  zavri_mp_RNR_init_weight(nullptr);
  zavri_mp_RNR_process_inner(nullptr, plane.data());
  zavri_mp_RNR_process_inner(&tile, nullptr);
  EXPECT_TRUE(take_gaussian_calls().empty());
  EXPECT_EQ(zavri_mp_RNR_process(), 0u);
}

}  // namespace
}  // namespace zavri::testing
