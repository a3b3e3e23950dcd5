// Counts the operations on bursts and on chroma alone, strip by strip as the library's pool calls
// them.
#include <cstdint>
#include <cstring>
#include <string>

#include "bench/instructions/count.h"
#include "include/zavricustpro.h"

namespace zavri::bench {
namespace {

// The frames have no padding: luma is followed by chroma.
struct Frames {
  Bytes frames[4];
  Bytes pristine;  // the reference
  T_3DYuvDenoiseParam param{};

  Frames() {
    param.width = param.y_stride = param.uv_stride = kWidth;
    param.height = kHeight;
    param.uv_offset = kPixels;
    param.thresh_tune = 1;
    param.thresh = param.threshY = kThreshold;
    for (int k = 0; k < 4; ++k) {
      frames[k].resize(kPixels * 3 / 2);
      param.frame_y[k] = frames[k].data();
    }
  }

  void set_chroma(const Bytes& chroma) {
    memcpy(&frames[0][kPixels], chroma.data(), chroma.size());
    pristine = frames[0];
  }

  void count_strips(const std::string& operation) {
    const auto restore_reference = [this] { restore(frames[0], pristine); };
    const auto denoise_strips = [this] {
      for (int32_t k = 0; k < kZavriStrips; ++k) zavri_mp_3D_YUV_denoise_inner(&k, &param, nullptr);
    };
    count(operation, kPixels, restore_reference, denoise_strips, frames[0]);
  }
};

void count_merges(Frames& frames, const Burst& burst) {
  for (int k = 0; k < 4; ++k) {
    memcpy(frames.frames[k].data(), burst.luma[k].data(), burst.luma[k].size());
    memcpy(&frames.frames[k][kPixels], burst.chroma[k].data(), burst.chroma[k].size());
  }
  frames.pristine = frames.frames[0];
  for (const bool whole : {true, false}) {
    frames.param.switch_a = whole;
    for (uint8_t n = 2; n <= 4; ++n) {
      frames.param.frame_num = n;
      frames.count_strips(std::string("merge/") + (whole ? "whole/" : "chroma/") +
                          std::to_string(n) + "_frames");
    }
  }
}

void count_runs(Frames& frames) {
  frames.param.frame_num = 1;
  frames.param.switch_d = 1;
  for (const Runs runs : {Runs::kLong, Runs::kShort}) {
    frames.set_chroma(run_plane(kWidth, kHeight / 2, runs));
    frames.count_strips(runs == Runs::kLong ? "runs/long" : "runs/short");
  }
}

struct Window {
  const char* name;
  ThreadPoolTaskFunc strip;
};

constexpr Window kWindows[] = {
    {"window/7_taps", zavri_mp_single_UV_denoise_new_inner_7},
    {"window/11_taps", zavri_mp_single_UV_denoise_new_inner_11},
    {"window/15_taps", zavri_mp_single_UV_denoise_new_inner_15},
    {"window/19_taps", zavri_mp_single_UV_denoise_new_inner_19},
};

void count_windows(const Bytes& pristine) {
  Bytes plane = pristine;
  T_UVDenoiseParam param{};
  param.width = param.stride = kWidth;
  param.height = kHeight / 2;
  param.uv_plane = plane.data();
  param.threshold = 16;
  for (int d = 0; d < param.threshold; ++d) param.weight_table[d] = static_cast<int8_t>(96 - 6 * d);
  const auto restore_plane = [&] { restore(plane, pristine); };
  for (const Window& window : kWindows) {
    const auto filter_strips = [&] {
      for (uint32_t k = 0; k < kZavriStrips; ++k) window.strip(&k, &param, nullptr);
    };
    count(window.name, kPixels, restore_plane, filter_strips, plane);
  }
}

}  // namespace

void count_denoise() {
  const Burst burst(kWidth, kHeight, Noise::kHard);
  Frames frames;
  count_merges(frames, burst);
  count_runs(frames);
  count_windows(burst.chroma[0]);
}

}  // namespace zavri::bench
