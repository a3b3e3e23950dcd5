#include "tools/chroma.h"

#include <zavricustpro.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <sstream>

#include "tools/error.h"
#include "tools/files.h"
#include "tools/timing.h"

namespace zavri::tools {
namespace {

constexpr uint32_t kStrips = 4;
constexpr int kCentreWeight = 64;

struct Window {
  int taps;
  int columns;     // that a plane must have, of 4 pixels
  int neighbours;  // at most
  ThreadPoolTaskFunc strip;
};
constexpr Window kWindows[] = {{7, 15, 10, zavri_mp_single_UV_denoise_new_inner_7},
                               {11, 24, 15, zavri_mp_single_UV_denoise_new_inner_11},
                               {15, 28, 15, zavri_mp_single_UV_denoise_new_inner_15},
                               {19, 32, 18, zavri_mp_single_UV_denoise_new_inner_19}};
constexpr Window kLegacyWindow = {11, 10, 10, zavri_mp_single_UV_denoise_inner_11};

const Window& window_of(const ChromaSettings& settings) {
  if (settings.legacy) return kLegacyWindow;
  const Window* const found =
      std::find_if(std::begin(kWindows), std::end(kWindows),
                   [&](const Window& window) { return window.taps == settings.taps; });
  if (found != std::end(kWindows)) return *found;
  throw Error("--taps " + std::to_string(settings.taps) + ": there are 7, 11, 15 and 19");
}

int reach_of(const Window& window) { return (window.taps - 1) / 2; }

int least_width(const Window& window) { return 4 * window.columns; }

// The last strip's borders need 2 * reach filtered rows, every second one. Some heights below
// safe_height() leave it as many, from there on all do.
bool is_high_enough(int height, const Window& window) {
  const int rows = height / 2;
  return (rows - 3 * (rows / 4)) / 2 >= 2 * reach_of(window);
}
int safe_height(const Window& window) { return 2 * (16 * reach_of(window) - 3); }

void check_size(const Frame& frame, const ChromaSettings& settings) {
  if (is_large_enough(frame, settings)) return;
  const Window& window = window_of(settings);
  throw Error("IN: " + frame.size() + " is too small for " + std::to_string(window.taps) +
              " taps: it takes " + std::to_string(least_width(window)) + 'x' +
              std::to_string(safe_height(window)));
}

std::vector<int> weights_of(const ChromaSettings& settings, const Window& window) {
  std::vector<int> weights = settings.weights;
  if (weights.empty()) {
    const double sigma = settings.falloff > 0 ? settings.falloff : settings.threshold / 2.0;
    for (int d = 0; d < settings.threshold; ++d) {
      weights.push_back(
          static_cast<int>(std::lround(kCentreWeight * std::exp(-0.5 * d * d / (sigma * sigma)))));
    }
  }
  if (static_cast<int>(weights.size()) < settings.threshold) {
    throw Error("--weights: " + std::to_string(weights.size()) + " numbers, but --threshold " +
                std::to_string(settings.threshold) + " takes as many");
  }
  weights.resize(static_cast<size_t>(settings.threshold));
  const int least = *std::min_element(weights.begin(), weights.end());
  if (kCentreWeight + window.neighbours * least <= 0) {
    throw Error("--weights: " + std::to_string(window.neighbours) + " neighbours of weight " +
                std::to_string(least) + " would outweigh the centre, which has " +
                std::to_string(kCentreWeight));
  }
  return weights;
}

// A copy of the chroma plane with the room that small planes need above and below. There, its first
// and last rows are repeated.
class RoomyPlane {
 public:
  RoomyPlane(const Frame& frame, int reach)
      : width_(static_cast<size_t>(frame.width)), room_(6 * static_cast<size_t>(reach) * width_) {
    bytes_.resize(room_ + frame.chroma.size() + room_);
    copy_from(frame);
  }

  uint8_t* data() { return bytes_.data() + room_; }

  void copy_from(const Frame& frame) {
    std::copy(frame.chroma.begin(), frame.chroma.end(), data());
    uint8_t* const end = data() + frame.chroma.size();
    for (size_t at = 0; at < room_; at += width_) {
      std::copy_n(data(), width_, bytes_.data() + at);
      std::copy_n(end - width_, width_, end + at);
    }
  }

  void copy_to(Frame& frame) { std::copy_n(data(), frame.chroma.size(), frame.chroma.data()); }

 private:
  size_t width_;
  size_t room_;
  std::vector<uint8_t> bytes_;
};

void run_in_order(ThreadPoolTaskFunc strip, const T_UVDenoiseParam& param) {
  for (uint32_t k = 0; k < kStrips; ++k) strip(&k, &param, nullptr);
}

void run_in_parallel(ThreadPoolTaskFunc strip, const T_UVDenoiseParam& param) {
  uint32_t numbers[kStrips];
  T_ThreadPoolTaskInput inputs[kStrips];
  for (uint32_t k = 0; k < kStrips; ++k) {
    numbers[k] = k;
    inputs[k] = {&numbers[k], nullptr, &param};
  }
  ThreadPoolWorker worker(g_threadpool, kStrips, strip, inputs);
  worker.Work();
}

}  // namespace

bool is_large_enough(const Frame& frame, const ChromaSettings& settings) {
  const Window& window = window_of(settings);
  return frame.width >= least_width(window) && is_high_enough(frame.height, window);
}

ChromaResult denoise_chroma(const Frame& frame, const ChromaSettings& settings, int runs) {
  const Window& window = window_of(settings);
  check_size(frame, settings);
  T_UVDenoiseParam param{};
  param.width = param.stride = static_cast<uint32_t>(frame.width);
  param.height = static_cast<uint32_t>(frame.height / 2);
  param.kernel_size = static_cast<int8_t>(window.taps);
  param.threshold = static_cast<int8_t>(settings.threshold);
  const std::vector<int> weights = weights_of(settings, window);
  std::copy(weights.begin(), weights.end(), param.weight_table);
  if (settings.parallel && HALThreadPoolInit() != 0) {
    throw Error("the library cannot start its threads", kRefused);
  }

  // The fixed tolerance treats U and V differently.
  ChromaResult result{frame.with_u_first(), 0};
  RoomyPlane plane(result.frame, reach_of(window));
  param.uv_plane = plane.data();
  std::vector<double> seconds;
  for (int run = 0; run < runs; ++run) {
    if (run > 0) plane.copy_from(result.frame);
    seconds.push_back(seconds_of([&] {
      settings.parallel ? run_in_parallel(window.strip, param) : run_in_order(window.strip, param);
    }));
  }
  plane.copy_to(result.frame);
  result.seconds = median(seconds);
  return result;
}

namespace {

int parse_weight(const std::string& word, const std::string& path) {
  int8_t weight = 0;
  const char* const end = word.data() + word.size();
  const auto [rest, error] = std::from_chars(word.data(), end, weight);
  if (error == std::errc() && rest == end) return weight;
  throw Error(path + ": " + word + ": weights are whole numbers, -128..127");
}

}  // namespace

std::vector<int> read_weights(const std::string& path) {
  const Bytes bytes = read_file(path);
  std::istringstream text(std::string(bytes.begin(), bytes.end()));
  std::vector<int> weights;
  for (std::string word; text >> word;) weights.push_back(parse_weight(word, path));
  if (weights.empty()) throw Error(path + ": there are no weights in it");
  return weights;
}

}  // namespace zavri::tools
