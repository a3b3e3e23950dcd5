// Times the multi-frame denoise as a whole, on one and on two processors, and what its pool costs.
#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>
#include <string>

#include "bench/fan_out.h"
#include "bench/summary.h"
#include "bench/timing.h"
#include "bench/touch.h"
#include "bench/workload.h"
#include "include/zavricustpro.h"

// Log lines are dropped, so that they are no part of the measure.
extern "C" int __android_log_print(int, const char*, const char*, ...) { return 0; }

namespace zavri::bench {
namespace {

constexpr double kMostOfTouch = 2.5;
constexpr double kMostPoolSeconds = 50e-6;

struct Mode {
  const char* name;
  uint8_t switch_a, switch_b, switch_c, switch_d;
};
constexpr Mode kModes[] = {
    {"whole", 1, 0, 0, 0},  {"edges", 0, 1, 0, 0},        {"edges_luma", 0, 0, 1, 0},
    {"chroma", 0, 0, 0, 0}, {"whole_smooth", 1, 0, 0, 1},
};

// Holds a burst in the layout of the entry, with the room that every mode needs.
struct Frames {
  T_3DYuvDenoiseParam param{};
  Bytes frames[4];
  Bytes pristine;  // is the reference before it is denoised

  Frames(int width, int height) {
    const Burst burst(width, height, Noise::kHard);
    const size_t luma = static_cast<size_t>(width) * height;
    param.width = static_cast<uint32_t>(width);
    param.height = static_cast<uint32_t>(height);
    param.y_stride = param.uv_stride = param.width;
    // No record of kModes needs more room than this one.
    T_3DYuvDenoiseParam widest = param;
    widest.frame_num = 3;
    widest.switch_b = widest.switch_d = 1;
    param.uv_offset = static_cast<uint32_t>(zavri_room_denoise_luma(&widest));
    for (int k = 0; k < 4; ++k) {
      frames[k].resize(param.uv_offset + zavri_room_denoise_chroma(&widest));
      memcpy(frames[k].data(), burst.luma[k].data(), luma);
      memcpy(&frames[k][param.uv_offset], burst.chroma[k].data(), luma / 2);
      param.frame_y[k] = frames[k].data();
    }
    pristine = frames[0];
  }

  // The thresholds are scaled by the frame's size: 15 % at two megapixels, 83 % at twelve.
  void prepare(const Mode& mode, int frame_num) {
    restore(frames[0], pristine);
    const bool large = param.width * param.height > 10000000;
    param.thresh_tune = 1;
    param.thresh = param.threshY = large ? 13 : 67;
    param.frame_num = static_cast<uint8_t>(frame_num);
    param.switch_a = mode.switch_a;
    param.switch_b = mode.switch_b;
    param.switch_c = mode.switch_c;
    param.switch_d = mode.switch_d;
  }
};

// Touches what mode `whole` loads and stores in one strip.
void touch_strip(const void* strip, const void* param, void*) {
  const auto& p = *static_cast<const T_3DYuvDenoiseParam*>(param);
  const int s = *static_cast<const int32_t*>(strip);
  const size_t rows = p.height / 8;
  const size_t end = s == kZavriLastStrip ? p.height / 2 : (s + 1) * rows;
  for (size_t r = s * rows; r < end; ++r) {
    const uint8_t* chroma[3];
    const uint8_t* luma[3];
    for (int k = 0; k < p.frame_num - 1; ++k) {
      chroma[k] = p.frame_y[k + 1] + p.uv_offset + r * p.uv_stride;
      luma[k] = p.frame_y[k + 1] + 2 * r * p.y_stride;
    }
    uint8_t* const y0 = p.frame_y[0] + 2 * r * p.y_stride;
    touch_row(p.frame_y[0] + p.uv_offset + r * p.uv_stride, chroma, p.frame_num - 1, p.width);
    touch_row(y0, luma, p.frame_num - 1, p.width);
    touch_row(y0 + p.y_stride, luma, 0, p.width);
  }
}

void do_nothing(const void*, const void*, void*) {}

template <class Prepare, class Work>
void add(const std::string& name, int processors, Prepare prepare, Work work) {
  add_restoring_benchmark(name, [=](benchmark::State& state) {
    use_processors(processors);
    time_work(state, prepare, work);
  });
}

void add_entry(int width, int height) {
  const auto frames = std::make_shared<Frames>(width, height);
  const std::string size = std::to_string(width) + 'x' + std::to_string(height);
  for (const int processors : {1, 2}) {
    for (int frame_num = 2; frame_num <= 4; ++frame_num) {
      for (const Mode& mode : kModes) {
        const std::string group = "entry/" + size + '/' + mode.name + '/' +
                                  std::to_string(frame_num) + "_frames/" +
                                  std::to_string(processors) + "_cpu";
        const bool plain_whole = mode.switch_a && !mode.switch_d;
        add(
            group + "/entry", processors, [=] { frames->prepare(mode, frame_num); },
            [=] { zavri_mp_3D_YUV_denoise(&frames->param); });
        if (!plain_whole) continue;
        add(
            group + "/touch", processors, [=] { frames->prepare(mode, frame_num); },
            [=] { fan_out(touch_strip, &frames->param); });
        if (frame_num == 4 && height == 3000) Summary::expect(group, {0, 0, kMostOfTouch, 0});
      }
    }
  }
}

void add_pool_cost() {
  const auto frames = std::make_shared<Frames>(16, 16);
  for (const int processors : {1, 2}) {
    const std::string cpus = std::to_string(processors) + "_cpu";
    Summary::expect("pool/fan_out/" + cpus, {0, 0, 0, kMostPoolSeconds});
    add(
        "pool/fan_out/" + cpus + "/four_empty_tasks", processors, [] {},
        [] { fan_out(do_nothing, nullptr); });
    Summary::expect("pool/entry/" + cpus, {0, 0, 0, kMostPoolSeconds});
    add(
        "pool/entry/" + cpus + "/16x16", processors, [=] { frames->prepare(kModes[0], 4); },
        [=] { zavri_mp_3D_YUV_denoise(&frames->param); });
  }
}

const bool kRegistered = [] {
  add_entry(1920, 1080);
  add_entry(4000, 3000);
  add_pool_cost();
  return true;
}();

}  // namespace
}  // namespace zavri::bench
