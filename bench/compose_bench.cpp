// Times the composition: its row kernels, and the whole call beside libyuv where that is installed.
#include <cstring>
#include <memory>
#include <string>

#include "bench/summary.h"
#include "bench/timing.h"
#include "bench/workload.h"
#include "compose/decimate.h"
#include "include/zavricustpro.h"

#ifdef ZAVRI_BENCH_LIBYUV
#include <libyuv/scale.h>
#include <libyuv/scale_uv.h>
#endif

namespace zavri::bench {
namespace {

// As many rows as the picture of 1920x1080 has are decimated, but a few of them again and again:
// they stay in the nearest cache. Of the whole frame, memory would be most of the time.
constexpr size_t kRowBytes = 1920;
constexpr size_t kRows = 540;
constexpr size_t kCachedRows = 8;

void add_kernel(const std::string& group, DecimateFunction DecimateKernels::*kernel,
                const Expectation& expectation) {
  Summary::expect(group, expectation);
  for (const Build build : kBuilds) {
    if (!runs_here(build)) continue;
    const DecimateFunction decimate = decimate_kernels(build).*kernel;
    add_benchmark(group + '/' + build_name(build), [decimate](benchmark::State& state) {
      const Bytes from = run_plane(kRowBytes, kCachedRows, Runs::kShort);
      Bytes to(from.size() / 2);
      time_work(state, [&] {
        for (size_t r = 0; r < kRows; ++r) {
          const size_t at = r % kCachedRows * kRowBytes;
          decimate(&to[at / 2], &from[at], kRowBytes / 2);
        }
      });
    });
  }
}

struct Frames {
  Bytes source1;
  Bytes source2;
  Bytes output;
  T_ComposeParam param{};

  Frames(int width, int height, int padding)
      : source1(run_plane(width, height * 3 / 2, Runs::kShort)),
        source2(run_plane(width, height * 3 / 2, Runs::kLong)) {
    param.width = static_cast<uint16_t>(width);
    param.height = static_cast<uint16_t>(height);
    param.padding = static_cast<uint16_t>(padding);
    param.src_frame1 = source1.data();
    param.src_frame2 = source2.data();
    output.resize(zavri_room_compose_frame(&param));
    param.dst_frame = output.data();
  }
};

#ifdef ZAVRI_BENCH_LIBYUV
// Makes the same picture but for the columns: of each two, libyuv takes the second.
void compose_with_libyuv(const T_ComposeParam& param) {
  const int width = param.width;
  const int used = width - param.padding;
  const int height = param.height;
  const auto pixels = static_cast<size_t>(width) * height;
  uint8_t* const frame = param.dst_frame;
  uint8_t* const luma = frame + pixels / 4;
  uint8_t* const chroma = frame + pixels * 9 / 8;
  memset(frame, 0, pixels / 4);
  memset(frame + pixels * 3 / 4, 0, pixels / 4);
  memset(frame + pixels, 129, pixels / 8);
  memset(frame + pixels * 11 / 8, 129, pixels / 8);
  for (int y = 0; y < height / 2; ++y) memset(luma + y * width, 0, param.padding);
  for (int y = 0; y < height / 4; ++y) memset(chroma + y * width, 129, param.padding);
  int column = param.padding;
  for (const uint8_t* source : {param.src_frame1, param.src_frame2}) {
    libyuv::ScalePlane(source, width, used, height, luma + column, width, used / 2, height / 2,
                       libyuv::kFilterNone);
    libyuv::UVScale(source + pixels, width, used / 2, height / 2, chroma + column, width, used / 4,
                    height / 4, libyuv::kFilterNone);
    column += used / 2;
  }
}
#endif

void add_entry(int width, int height) {
  const auto frames = std::make_shared<Frames>(width, height, 128);
  const std::string group = "compose/" + std::to_string(width) + 'x' + std::to_string(height);
  Summary::expect(group, {0, 0, 0, 0, 1.0});
  const auto add = [&](const char* variant, auto compose) {
    add_benchmark(group + '/' + variant, [=](benchmark::State& state) {
      time_work(state, [&] { compose(frames->param); });
    });
  };
  add("entry", [](T_ComposeParam& param) { zavri_mp_compose_two_same_frame(&param); });
#ifdef ZAVRI_BENCH_LIBYUV
  add("peer", compose_with_libyuv);
#endif
}

const bool kRegistered = [] {
  add_kernel("compose/decimate_luma", &DecimateKernels::luma, {7, 9.6});
  add_kernel("compose/decimate_chroma", &DecimateKernels::chroma, {4, 5.6});
  add_entry(1920, 1080);
  add_entry(4000, 3000);
  return true;
}();

}  // namespace
}  // namespace zavri::bench
