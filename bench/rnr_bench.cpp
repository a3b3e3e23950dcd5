// Times the radial noise reduction on one thread: its row kernels, and all tiles of a luma plane
// beside OpenCV and libyuv where those are installed.
#include <memory>
#include <string>

#include "bench/summary.h"
#include "bench/timing.h"
#include "bench/touch.h"
#include "bench/workload.h"
#include "include/zavricustpro.h"
#include "rnr/blend.h"
#include "rnr/tables.h"
#include "rnr/weights.h"

#if defined(ZAVRI_BENCH_LIBYUV) && defined(ZAVRI_BENCH_OPENCV)
#define ZAVRI_BENCH_RNR_PEER 1
#include <libyuv/planar_functions.h>

#include <opencv2/imgproc.hpp>
#endif

namespace zavri::bench {
namespace {

// The kernels work one row of a tile of 1920x1080 again and again: it stays in the nearest cache.
constexpr int kTileWidth = 480;
constexpr int kTileHeight = 270;

struct Rows {
  Bytes row = run_plane(kTileWidth, 1, Runs::kShort);
  Bytes blurred = run_plane(kTileWidth, 1, Runs::kLong);
  Bytes weight = Bytes(kTileWidth);
  Bytes keep = Bytes(kTileWidth);
  Bytes to = Bytes(kTileWidth);

  // Fills the weights of row y of the upper left tile of 1920x1080 at a radius of 100 %.
  void weigh(WeighFunction function, int y) {
    constexpr WeightRule kRule = {269 * 269, 960 * 960 + 540 * 540 - 269 * 269, 100};
    function(weight.data(), keep.data(), kTileWidth, -960, y - 540, kRule);
  }
};

template <class Work>
void add_kernel(const char* group, Build build, Work work) {
  add_benchmark(std::string(group) + '/' + build_name(build), [=](benchmark::State& state) {
    Rows rows;
    rows.weigh(weigh_kernel(), 0);
    time_work(state, [&] {
      for (int y = 0; y < kTileHeight; ++y) work(rows, y);
    });
  });
}

void add_kernels() {
  Summary::expect("rnr/blend", {6, 12});
  for (const Build build : kBuilds) {
    if (!runs_here(build)) continue;
    add_kernel("rnr/weights", build,
               [weigh = weigh_kernel(build)](Rows& rows, int y) { rows.weigh(weigh, y); });
    add_kernel("rnr/blend", build, [blend = blend_kernel(build)](Rows& rows, int) {
      blend(rows.to.data(), rows.row.data(), rows.blurred.data(), rows.weight.data(), kTileWidth);
    });
  }
}

#ifdef ZAVRI_BENCH_RNR_PEER
void add_peer(const std::string& name, int width, int height) {
  add_benchmark(name, [=](benchmark::State& state) {
    Bytes luma = run_plane(width, height, Runs::kShort);
    Bytes blurred(luma.size());
    const Bytes weights(luma.size(), 100);
    Bytes blended(luma.size());
    const cv::Mat from(height, width, CV_8U, luma.data());
    cv::Mat to(height, width, CV_8U, blurred.data());
    time_work(state, [&] {
      cv::GaussianBlur(from, to, {5, 5}, 0);
      libyuv::BlendPlane(blurred.data(), width, luma.data(), width, weights.data(), width,
                         blended.data(), width, width, height);
    });
  });
}
#endif

// Touches the bytes of the three steps, each for the whole tile.
void touch_tile(uint8_t* plane, size_t stride, uint32_t k) {
  const T_RnrTile& tile = g_rnr_state.tiles[k];
  const RnrBuffers& buffers = g_rnr_state.buffers[k];
  const auto width = static_cast<size_t>(tile.width);
  const size_t bytes = width * static_cast<size_t>(tile.height);
  uint8_t* const first = plane + static_cast<size_t>(tile.y) * stride + tile.x;
  for (size_t row = 0, at = 0; at < bytes; ++row, at += width) {
    const uint8_t* const from[] = {first + row * stride};
    touch_row(buffers.tile_copy + at, from, 1, width);
  }
  const uint8_t* const copy[] = {buffers.tile_copy};
  touch_row(buffers.blurred, copy, 1, bytes);
  for (size_t row = 0, at = 0; at < bytes; ++row, at += width) {
    const uint8_t* const from[] = {buffers.tile_copy + at, buffers.blurred + at,
                                   buffers.blur_weight + at};
    touch_row(first + row * stride, from, 3, width);
  }
}

void add_plane(int width, int height) {
  const std::string group = "rnr/" + std::to_string(width) + 'x' + std::to_string(height);
  Summary::expect(group, {0, 0, 0, 0, 0.6});
  const auto add = [&](const char* variant, auto work) {
    add_benchmark(group + '/' + variant, [=](benchmark::State& state) {
      Bytes luma = run_plane(width, height, Runs::kShort);
      const auto stride = static_cast<uint32_t>(width);
      zavri_mp_RNR_init_base(stride, static_cast<uint32_t>(height), stride, 100, 80);
      for (uint32_t k = 0; k < kRnrTiles; ++k) zavri_mp_RNR_init_weight(&k);
      time_work(state, [&] {
        for (uint32_t k = 0; k < kRnrTiles; ++k) work(luma.data(), k);
      });
    });
  };
  add("tiles", [](uint8_t* plane, uint32_t k) { zavri_mp_RNR_process_inner(&k, plane); });
  add("touch",
      [width](uint8_t* plane, uint32_t k) { touch_tile(plane, static_cast<size_t>(width), k); });
#ifdef ZAVRI_BENCH_RNR_PEER
  add_peer(group + "/peer", width, height);
#endif
}

const bool kRegistered = [] {
  add_kernels();
  add_plane(1920, 1080);
  add_plane(4000, 3000);
  return true;
}();

}  // namespace
}  // namespace zavri::bench
