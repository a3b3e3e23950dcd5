// The chroma denoise: each pass of its windows, the fill step, and whole planes, in every build and
// beside a linear blur of the same width where OpenCV is installed. One thread.
#include <benchmark/benchmark.h>

#include <chrono>
#include <memory>
#include <string>

#include "bench/summary.h"
#include "bench/workload.h"
#include "include/zavricustpro.h"
#include "tests/support/use_build.h"
#include "uvdenoise/chroma_window.h"
#include "uvdenoise/fill_grid.h"

#ifdef ZAVRI_BENCH_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace zavri::bench {
namespace {

constexpr int kWidth = 1920;
constexpr int kRows = 540;
constexpr int kWeightThreshold = 16;
constexpr int kStrips = 4;

struct Plane {
  int width;
  int rows;
  Bytes bytes;
  const Bytes pristine;

  Plane(int plane_width, int plane_rows, Bytes plane)
      : width(plane_width), rows(plane_rows), bytes(plane), pristine(std::move(plane)) {}
};
using SharedPlane = std::shared_ptr<Plane>;

// Tiles that are wider than every window with hardly any noise, or noise that lets about half of
// the neighbours count, and no predictor knows which.
SharedPlane smooth_plane(int width, int rows) {
  return std::make_shared<Plane>(width, rows, run_plane(width, rows, Runs::kLong));
}
SharedPlane hard_plane(int width, int rows) {
  return std::make_shared<Plane>(width, rows, Burst(width, 2 * rows, Noise::kHard).chroma[0]);
}

// The filters work in place; restoring the plane is not in the figure.
template <class Work>
void add(const std::string& name, const SharedPlane& plane, Work work) {
  benchmark::RegisterBenchmark(name.c_str(),
                               [=](benchmark::State& state) {
                                 for (auto _ : state) {
                                   restore(plane->bytes, plane->pristine);
                                   const auto start = std::chrono::steady_clock::now();
                                   work();
                                   const std::chrono::duration<double> elapsed =
                                       std::chrono::steady_clock::now() - start;
                                   state.SetIterationTime(elapsed.count());
                                 }
                               })
      ->UseManualTime()
      ->Unit(benchmark::kMicrosecond);
}

template <class Work>
void add_builds(const std::string& group, const SharedPlane& plane, Work work) {
  for (const Build build : kBuilds) {
    if (runs_here(build)) add(group + '/' + build_name(build), plane, [=] { work(build); });
  }
}

int weight_of(int difference) { return 100 - 5 * difference; }

Weights weights() {
  Weights result{};
  result.threshold = kWeightThreshold;
  for (int d = 0; d < kWeightThreshold; ++d) result.of[d] = static_cast<int8_t>(weight_of(d));
  return result;
}

Pass pass_of(int length, int reach, int border) {
  const auto count = static_cast<uint32_t>(reach);
  const int middle = length - 2 * reach;
  return {{{0, count, {0, border}},
           {reach, static_cast<uint32_t>(middle), {reach, reach}},
           {middle, count, {border - 1, 0}}}};
}

struct Window {
  int taps;
  ThreadPoolTaskFunc strip;
  Expectation rows;
  Expectation columns;
};

constexpr Window kWindows[] = {
    {7, zavri_mp_single_UV_denoise_new_inner_7, {5.8, 5.8}, {5.6, 7.4}},
    {11, zavri_mp_single_UV_denoise_new_inner_11, {6.8, 7.7}, {7.0, 9.9}},
    {15, zavri_mp_single_UV_denoise_new_inner_15, {}, {}},
    {19, zavri_mp_single_UV_denoise_new_inner_19, {7.8, 10.2}, {7.9, 12.6}},
};

void add_passes(const SharedPlane& plane) {
  const Grid grid = {plane->bytes.data(), kRows / 2, kWidth / 4, 2 * kWidth};
  for (const Window& window : kWindows) {
    const int reach = (window.taps - 1) / 2;
    const std::string taps = std::to_string(window.taps) + "_taps";
    const Pass rows = pass_of(kWidth / 4, reach, reach == 3 ? 10 : 15);
    const Pass columns = pass_of(kRows / 2, reach, 2 * reach);
    Summary::expect("uv/rows/" + taps, window.rows);
    add_builds("uv/rows/" + taps, plane, [=](Build build) {
      chroma_window_kernels(build).weighted_rows(grid, rows, weights());
    });
    Summary::expect("uv/columns/" + taps, window.columns);
    add_builds("uv/columns/" + taps, plane, [=](Build build) {
      chroma_window_kernels(build).weighted_columns(grid, columns, weights());
    });
  }
  Summary::expect("uv/fill", {6.3, 8.8});
  add_builds("uv/fill", plane, [=](Build build) {
    const testing::UseBuild use(build);
    UV_denoise_fill_grid(plane->bytes.data(), kWidth, kRows, kWidth, kStrips - 1);
  });
}

void denoise(ThreadPoolTaskFunc function, Plane& plane) {
  T_UVDenoiseParam param{};
  param.width = param.stride = static_cast<uint32_t>(plane.width);
  param.height = static_cast<uint32_t>(plane.rows);
  param.uv_plane = plane.bytes.data();
  param.threshold = kWeightThreshold;
  for (int d = 0; d < kWeightThreshold; ++d) {
    param.weight_table[d] = static_cast<int8_t>(weight_of(d));
  }
  for (uint32_t strip = 0; strip < kStrips; ++strip) function(&strip, &param, nullptr);
}

void add_plane(const std::string& group, ThreadPoolTaskFunc function, const SharedPlane& plane) {
  add_builds(group, plane, [=](Build build) {
    const testing::UseBuild use(build);
    denoise(function, *plane);
  });
}

void add_planes(int width, int height) {
  for (const bool hard : {false, true}) {
    const SharedPlane plane =
        hard ? hard_plane(width, height / 2) : smooth_plane(width, height / 2);
    const std::string size = std::to_string(width) + 'x' + std::to_string(height);
    const std::string end = '/' + size + (hard ? "/hard" : "/smooth");
    for (const Window& window : kWindows) {
      const std::string group = "uv/plane/" + std::to_string(window.taps) + "_taps" + end;
      if (window.taps == 11) Summary::expect(group, {7, 7});
      add_plane(group, window.strip, plane);
    }
    add_plane("uv/plane/tolerant" + end, zavri_mp_single_UV_denoise_inner_11, plane);
#ifdef ZAVRI_BENCH_OPENCV
    const std::string group = "uv/beside_linear_blur" + end;
    Summary::expect(group, {0, 0, 0, 0, 1});
    add(group + "/11_taps", plane, [=] { denoise(kWindows[1].strip, *plane); });
    const auto blurred = std::make_shared<Bytes>(plane->bytes.size());
    add(group + "/peer", plane, [=] {
      const cv::Mat from(plane->rows, plane->width / 2, CV_8UC2, plane->bytes.data());
      cv::Mat to(plane->rows, plane->width / 2, CV_8UC2, blurred->data());
      cv::GaussianBlur(from, to, {11, 11}, 0);
    });
#endif
  }
}

const bool kRegistered = [] {
  add_passes(smooth_plane(kWidth, kRows));
  add_planes(1920, 1080);
  add_planes(4000, 3000);
  return true;
}();

}  // namespace
}  // namespace zavri::bench
