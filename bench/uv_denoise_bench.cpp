// Times the chroma denoise on one thread: each pass of its windows, the fill step, and whole
// planes, in every build and beside a linear blur of the same width where OpenCV is installed.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "bench/summary.h"
#include "bench/timing.h"
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

struct Plane {
  int width;
  int rows;
  Bytes bytes;
  const Bytes pristine;

  Plane(int plane_width, int plane_rows, Bytes plane)
      : width(plane_width), rows(plane_rows), bytes(plane), pristine(std::move(plane)) {}
};
using SharedPlane = std::shared_ptr<Plane>;

// The smooth plane has tiles wider than every window and hardly any noise. On the hard one noise
// lets about half of the neighbours count, and no predictor knows which.
SharedPlane smooth_plane(int width, int rows) {
  return std::make_shared<Plane>(width, rows, run_plane(width, rows, Runs::kLong));
}
SharedPlane hard_plane(int width, int rows) {
  return std::make_shared<Plane>(width, rows, Burst(width, 2 * rows, Noise::kHard).chroma[0]);
}

// Adds work in place on a plane, whose restoring is not in the figure.
template <class Work>
void add(const std::string& name, const SharedPlane& plane, Work work) {
  add_restoring_benchmark(name, [=](benchmark::State& state) {
    time_work(
        state, [&] { restore(plane->bytes, plane->pristine); }, work);
  });
}

template <class Work>
void add_builds(const std::string& group, const SharedPlane& plane, Work work) {
  for (const Build build : kBuilds) {
    if (runs_here(build)) add(group + '/' + build_name(build), plane, [=] { work(build); });
  }
}

// These weights fall from `level` towards 0 at a threshold.
struct Falling {
  int threshold;
  int level;

  int8_t of(int difference) const {
    return static_cast<int8_t>(level - level * difference / threshold);
  }
};
constexpr Falling kUsual = {16, 96};
constexpr Falling kFarReaching = {64, 96};
// These weights are too heavy for sums of 16 bits: all builds take the plain rule.
constexpr Falling kTooHeavy = {127, 127};

struct Window {
  Taps taps;
  ThreadPoolTaskFunc strip;
  Expectation rows;
  Expectation columns;

  std::string name() const { return std::to_string(2 * taps.reach + 1) + "_taps"; }
};

constexpr Window kWindows[] = {
    {kTaps7, zavri_mp_single_UV_denoise_new_inner_7, {5.8, 5.8}, {5.6, 7.4}},
    {kTaps11, zavri_mp_single_UV_denoise_new_inner_11, {6.8, 7.7}, {7.0, 9.9}},
    {kTaps15, zavri_mp_single_UV_denoise_new_inner_15, {}, {}},
    {kTaps19, zavri_mp_single_UV_denoise_new_inner_19, {7.8, 10.2}, {7.9, 12.6}},
};
constexpr Window kWindow11 = kWindows[1];
constexpr ThreadPoolTaskFunc kTolerant = zavri_mp_single_UV_denoise_inner_11;

void add_passes(const SharedPlane& plane) {
  const Grid grid = {plane->bytes.data(), kRows / 2, kWidth / 4, 2 * kWidth};
  const auto add_pass = [&](const std::string& group, const Expectation& expectation, auto pass) {
    Summary::expect(group, expectation);
    add_builds(group, plane, [=](Build build) { pass(chroma_window_kernels(build)); });
  };
  Weights weights{};
  weights.threshold = kUsual.threshold;
  for (int d = 0; d < kUsual.threshold; ++d) weights.of[d] = kUsual.of(d);
  for (const Window& window : kWindows) {
    const auto both_ends = static_cast<uint32_t>(2 * window.taps.reach);
    const Pass rows = row_pass(window.taps, grid.columns - both_ends);
    const Pass columns = column_pass(window.taps, grid.rows - both_ends);
    add_pass("uv/rows/" + window.name(), window.rows,
             [=](const auto& kernels) { kernels.weighted_rows(grid, rows, weights); });
    add_pass("uv/columns/" + window.name(), window.columns,
             [=](const auto& kernels) { kernels.weighted_columns(grid, columns, weights); });
  }
  const int reach = kTaps11.reach;
  const Pass rows = middle_pass(reach, kWidth / 4 - 2 * kTaps11.reach);
  const Pass columns = middle_pass(reach, kRows / 2 - 2 * kTaps11.reach);
  add_pass("uv/rows/tolerant", {5, 5},
           [=](const auto& kernels) { kernels.tolerant_rows(grid, rows); });
  add_pass("uv/columns/tolerant", {5, 5},
           [=](const auto& kernels) { kernels.tolerant_columns(grid, columns); });
  Summary::expect("uv/fill", {6.3, 8.8});
  add_builds("uv/fill", plane, [=](Build build) {
    const testing::UseBuild use(build);
    UV_denoise_fill_grid(plane->bytes.data(), kWidth, kRows, kWidth, kZavriLastStrip);
  });
}

void denoise(ThreadPoolTaskFunc function, const Falling& weights, Plane& plane) {
  T_UVDenoiseParam param{};
  param.width = param.stride = static_cast<uint32_t>(plane.width);
  param.height = static_cast<uint32_t>(plane.rows);
  param.uv_plane = plane.bytes.data();
  param.threshold = static_cast<int8_t>(weights.threshold);
  for (int d = 0; d < weights.threshold; ++d) param.weight_table[d] = weights.of(d);
  for (uint32_t strip = 0; strip < kZavriStrips; ++strip) function(&strip, &param, nullptr);
}

void add_plane(const std::string& group, ThreadPoolTaskFunc function, const Falling& weights,
               const SharedPlane& plane) {
  add_builds(group, plane, [=](Build build) {
    const testing::UseBuild use(build);
    denoise(function, weights, *plane);
  });
}

void add_blur([[maybe_unused]] const std::string& end, [[maybe_unused]] const SharedPlane& plane) {
#ifdef ZAVRI_BENCH_OPENCV
  const std::string group = "uv/beside_linear_blur" + end;
  Expectation faster;
  faster.most_of_peer = 1;
  Summary::expect(group, faster);
  add(group + "/11_taps", plane, [=] { denoise(kWindow11.strip, kUsual, *plane); });
  const auto blurred = std::make_shared<Bytes>(plane->bytes.size());
  add(group + "/peer", plane, [=] {
    const cv::Mat from(plane->rows, plane->width / 2, CV_8UC2, plane->bytes.data());
    cv::Mat to(plane->rows, plane->width / 2, CV_8UC2, blurred->data());
    cv::GaussianBlur(from, to, {11, 11}, 0);
  });
#endif
}

void add_planes(int width, int height) {
  Expectation at_least_7 = {7, 7};
  at_least_7.strict = true;
  for (const bool hard : {false, true}) {
    const SharedPlane plane =
        hard ? hard_plane(width, height / 2) : smooth_plane(width, height / 2);
    const std::string size = std::to_string(width) + 'x' + std::to_string(height);
    const std::string end = '/' + size + (hard ? "/hard" : "/smooth");
    Summary::expect("uv/plane/11_taps" + end, at_least_7);
    for (const Window& window : kWindows) {
      add_plane("uv/plane/" + window.name() + end, window.strip, kUsual, plane);
    }
    Summary::expect("uv/plane/tolerant" + end, {5, 5});
    add_plane("uv/plane/tolerant" + end, kTolerant, kUsual, plane);
    add_plane("uv/plane/far_reaching" + end, kWindow11.strip, kFarReaching, plane);
    add_plane("uv/plane/too_heavy" + end, kWindow11.strip, kTooHeavy, plane);
    add_blur(end, plane);
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
