// Times the resize and its portable scaler, 1920x1080 to 3840x2160, beside the libraries that an
// engineer would reach for otherwise.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "bench/fan_out.h"
#include "bench/summary.h"
#include "bench/workload.h"
#include "platform/fastcv.h"
#include "resize/chroma_channels.h"
#include "tests/support/use_build.h"

#ifdef ZAVRI_BENCH_LIBYUV
#include <libyuv/scale.h>
#include <libyuv/scale_uv.h>
#endif
#ifdef ZAVRI_BENCH_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace zavri::bench {
namespace {

constexpr uint16_t kPoly = 0;
constexpr uint16_t kBilinear = 1;
constexpr Expectation kAsFastAsPeer = {0, 0, 0, 0, 1.0};
constexpr Expectation kOnceAndAHalfAsFast = {0, 0, 0, 0, 1 / 1.5};

// Holds source and destination. Chroma is interleaved for the entry, and two planes for the scaler.
struct Frames {
  T_ResizeParam param{};
  Bytes source;
  Bytes target;

  Frames(int width, int height) : source(run_plane(1920, 1080 * 3 / 2, Runs::kShort)) {
    param.src_width = param.src_stride = 1920;
    param.src_height = 1080;
    param.src_y = source.data();
    param.src_uv = &source[1920 * 1080];
    param.dst_width = param.dst_stride = static_cast<uint16_t>(width);
    param.dst_height = static_cast<uint16_t>(height);
    const size_t luma = zavri_room_resize_luma(param.dst_width, param.dst_height, param.dst_stride);
    target.resize(luma + zavri_room_resize_chroma(param.dst_height, param.dst_stride));
    param.dst_y = target.data();
    param.dst_uv = &target[luma];
  }
};

// What the scratch of a strip costs depends on whether the C library gives freed memory back to the
// system and fetches it anew, page by page, for the next call. Once a block of a frame's size has
// been freed it keeps such memory; any process that handles frames has done that.
void free_a_frame() {
  void* volatile frame = malloc(16 << 20);
  free(frame);
}

template <class Work>
void add(const std::string& name, int processors, Work work) {
  benchmark::RegisterBenchmark(name.c_str(),
                               [=](benchmark::State& state) {
                                 use_processors(processors);
                                 free_a_frame();
                                 for (auto _ : state) work();
                               })
      ->UseRealTime()
      ->Unit(benchmark::kMicrosecond);
}

// Places one strip of a frame for the peers.
struct Strip {
  const uint8_t *src_y, *src_uv;
  uint8_t *dst_y, *dst_uv;
  int src_rows, dst_rows;

  Strip(const void* number, const T_ResizeParam& p) {
    const int k = *static_cast<const int32_t*>(number);
    src_rows = p.src_height / kZavriStrips;
    dst_rows = p.dst_height / kZavriStrips;
    src_y = p.src_y + k * src_rows * p.src_stride;
    src_uv = p.src_uv + k * src_rows / 2 * p.src_stride;
    dst_y = p.dst_y + k * dst_rows * p.dst_stride;
    dst_uv = p.dst_uv + k * dst_rows / 2 * p.dst_stride;
  }
};

#ifdef ZAVRI_BENCH_LIBYUV
void peer_bilinear(const void* number, const void* param, void*) {
  const auto& p = *static_cast<const T_ResizeParam*>(param);
  const Strip s(number, p);
  libyuv::NV12Scale(s.src_y, p.src_stride, s.src_uv, p.src_stride, p.src_width, s.src_rows, s.dst_y,
                    p.dst_stride, s.dst_uv, p.dst_stride, p.dst_width, s.dst_rows,
                    libyuv::kFilterBilinear);
}
#endif

#ifdef ZAVRI_BENCH_OPENCV
cv::Mat plane(const uint8_t* data, int width, int rows) {
  return cv::Mat(rows, width, CV_8U, const_cast<uint8_t*>(data));
}

// Works on the planes that the scaler gets: luma, and two of chroma.
void peer_poly(const void* number, const void* param, void*) {
  const auto& p = *static_cast<const T_ResizeParam*>(param);
  const Strip s(number, p);
  cv::Mat luma = plane(s.dst_y, p.dst_width, s.dst_rows);
  cv::resize(plane(s.src_y, p.src_width, s.src_rows), luma, luma.size(), 0, 0, cv::INTER_CUBIC);
  const int src_chroma = p.src_width / 2;
  const int dst_chroma = p.dst_width / 2;
  for (int channel = 0; channel < 2; ++channel) {
    const uint8_t* const from = s.src_uv + channel * src_chroma * (s.src_rows / 2);
    uint8_t* const to = s.dst_uv + channel * dst_chroma * (s.dst_rows / 2);
    cv::Mat scaled = plane(to, dst_chroma, s.dst_rows / 2);
    cv::resize(plane(from, src_chroma, s.src_rows / 2), scaled, scaled.size(), 0, 0,
               cv::INTER_CUBIC);
  }
}

void peer_gaussian(const void* number, const void* param, void*) {
  const auto& p = *static_cast<const T_ResizeParam*>(param);
  const Strip s(number, p);
  cv::Mat blurred = plane(s.dst_y, p.src_width, s.src_rows);
  cv::GaussianBlur(plane(s.src_y, p.src_width, s.src_rows), blurred, {5, 5}, 0, 0,
                   cv::BORDER_REPLICATE);
}
#endif

void gaussian(const void* number, const void* param, void*) {
  const auto& p = *static_cast<const T_ResizeParam*>(param);
  const Strip s(number, p);
  fcvFilterGaussian5x5u8(s.src_y, p.src_width, static_cast<uint32_t>(s.src_rows), s.dst_y, 1);
}

// Scales the three planes of a frame without the resize around the scaler.
void scale_planes(const T_ResizeParam& p, uint16_t mode) {
  const auto scale = [mode](const uint8_t* from, uint32_t w, uint32_t h, uint8_t* to, uint32_t dw,
                            uint32_t dh) {
    if (mode == kPoly) {
      fcvScaleUpPolyu8(from, w, h, w, to, dw, dh, dw);
    } else {
      fcvScaleu8(from, w, h, w, to, dw, dh, dw, kInterpolateBilinear);
    }
  };
  scale(p.src_y, p.src_width, p.src_height, p.dst_y, p.dst_width, p.dst_height);
  const uint32_t src_bytes = p.src_width / 2 * (p.src_height / 2);
  const uint32_t dst_bytes = p.dst_width / 2 * (p.dst_height / 2);
  for (uint32_t channel = 0; channel < 2; ++channel) {
    scale(p.src_uv + channel * src_bytes, p.src_width / 2, p.src_height / 2,
          p.dst_uv + channel * dst_bytes, p.dst_width / 2, p.dst_height / 2);
  }
}

void add_entry(const std::shared_ptr<Frames>& frames, uint16_t mode, const std::string& name,
               ThreadPoolTaskFunc peer, const Expectation& expectation) {
  for (const int processors : {1, 2}) {
    const std::string group = "resize/" + name + '/' + std::to_string(processors) + "_cpu";
    Summary::expect(group, expectation);
    add(group + "/entry", processors, [=] {
      frames->param.scale_mode = mode;
      zavri_mp_resize_process(&frames->param);
    });
    if (peer) add(group + "/peer", processors, [=] { fan_out(peer, &frames->param); });
  }
}

void add_gaussian(const std::shared_ptr<Frames>& frames, ThreadPoolTaskFunc peer) {
  for (const int processors : {1, 2}) {
    const std::string group = "gaussian/" + std::to_string(processors) + "_cpu";
    Summary::expect(group, kAsFastAsPeer);
    add(group + "/blur", processors, [=] { fan_out(gaussian, &frames->param); });
    if (peer) add(group + "/peer", processors, [=] { fan_out(peer, &frames->param); });
  }
}

// Times the work in every build, one strip after the other.
template <class Work>
void add_builds(const std::string& group, ThreadPoolTaskFunc peer,
                const std::shared_ptr<Frames>& frames, Work work) {
  for (const Build build : testing::builds_here()) {
    add(group + '/' + build_name(build), 1, [=] {
      const testing::UseBuild use(build);
      work();
    });
  }
  if (peer) add(group + "/peer", 1, [=] { fan_out(peer, &frames->param); });
}

void add_channels(const std::shared_ptr<Frames>& frames) {
  constexpr size_t kPairs = 1920 * 1080 / 4;
  for (const Build build : testing::builds_here()) {
    const ChannelKernels& kernels = channel_kernels(build);
    const std::string variant = std::string("/") + build_name(build);
    uint8_t* const scratch = frames->target.data();
    add("resize/split" + variant, 1,
        [=, &kernels] { kernels.split(frames->param.src_uv, kPairs, scratch, scratch + kPairs); });
    add("resize/merge" + variant, 1, [=, &kernels] {
      kernels.merge(frames->param.src_uv, frames->param.src_uv + kPairs, kPairs, scratch);
    });
  }
}

const bool kRegistered = [] {
#ifdef ZAVRI_BENCH_LIBYUV
  const ThreadPoolTaskFunc bilinear_peer = peer_bilinear;
#else
  const ThreadPoolTaskFunc bilinear_peer = nullptr;
#endif
#ifdef ZAVRI_BENCH_OPENCV
  const ThreadPoolTaskFunc poly_peer = peer_poly;
  const ThreadPoolTaskFunc gaussian_peer = peer_gaussian;
#else
  const ThreadPoolTaskFunc poly_peer = nullptr;
  const ThreadPoolTaskFunc gaussian_peer = nullptr;
#endif
  const auto twice = std::make_shared<Frames>(3840, 2160);
  const auto once_and_a_half = std::make_shared<Frames>(2880, 1620);
  add_entry(twice, kBilinear, "bilinear", bilinear_peer, kAsFastAsPeer);
  add_entry(twice, kPoly, "poly", poly_peer, kOnceAndAHalfAsFast);
  add_entry(once_and_a_half, kBilinear, "bilinear_2880x1620", bilinear_peer, {});
  add_builds("scale/bilinear", bilinear_peer, twice,
             [=] { scale_planes(twice->param, kBilinear); });
  add_builds("scale/bilinear_2880x1620", bilinear_peer, once_and_a_half,
             [=] { scale_planes(once_and_a_half->param, kBilinear); });
  add_builds("scale/poly", poly_peer, twice, [=] { scale_planes(twice->param, kPoly); });
  add_builds("gaussian/kernels", gaussian_peer, twice, [=] { fan_out(gaussian, &twice->param); });
  add_gaussian(twice, gaussian_peer);
  add_channels(twice);
  return true;
}();

}  // namespace
}  // namespace zavri::bench
