#include "tools/operations/chroma.h"

#include <zavricustpro.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <sstream>

#include "tools/error.h"
#include "tools/images/storage.h"
#include "tools/operations/tables.h"

namespace zavri::tools {
namespace {

constexpr int kCentreWeight = 64;

struct Window {
  int taps;
  int least_width;  // of a frame, in pixels
  int neighbours;   // at most
  ThreadPoolTaskFunc strip;

  int reach() const { return (taps - 1) / 2; }

  // The last strip's borders need 2 * reach filtered rows, every second row of chroma. Some heights
  // below safe_height() leave the strip as many, from there on all do.
  bool is_high_enough(int height) const {
    const int rows = height / 2;
    return (rows - kZavriLastStrip * (rows / kZavriStrips)) / 2 >= 2 * reach();
  }
  int safe_height() const { return 2 * (16 * reach() - 3); }
};
constexpr Window kWindows[] = {{7, 60, 10, zavri_mp_single_UV_denoise_new_inner_7},
                               {11, 96, 15, zavri_mp_single_UV_denoise_new_inner_11},
                               {15, 112, 15, zavri_mp_single_UV_denoise_new_inner_15},
                               {19, 128, 18, zavri_mp_single_UV_denoise_new_inner_19}};
constexpr Window kLegacyWindow = {11, 40, 10, zavri_mp_single_UV_denoise_inner_11};

const Window& window_of(const Chroma& chroma) {
  if (chroma.legacy) return kLegacyWindow;
  return *std::find_if(std::begin(kWindows), std::end(kWindows),
                       [&](const Window& window) { return window.taps == chroma.taps; });
}

int parse_weight(const std::string& text, const std::string& path) {
  const std::optional<int64_t> weight = parse_whole(text, INT8_MIN, INT8_MAX);
  if (!weight) throw Error(path + ": " + text + ": weights are whole numbers, -128..127");
  return static_cast<int>(*weight);
}

// The weights of the differences 0, 1, 2 .., as numbers with blanks between them, or as a list in
// JSON or C.
std::vector<int> read_weights(const std::string& path) {
  const Bytes bytes = read_file(path);
  const std::string text(bytes.begin(), bytes.end());
  const Report list = list_in(text, kWeightTable);
  std::istringstream numbers(text);
  std::vector<std::string> words{std::istream_iterator<std::string>(numbers), {}};
  if (list.is_array()) {
    words.clear();
    for (const Report& item : list) words.push_back(item.dump());
  }
  std::vector<int> weights;
  weights.reserve(words.size());
  for (const std::string& word : words) weights.push_back(parse_weight(word, path));
  if (weights.empty()) throw Error(path + ": there are no weights in it");
  return weights;
}

void check_weights(const Chroma& chroma) {
  if (chroma.weights.empty()) return;
  if (static_cast<int>(chroma.weights.size()) < chroma.threshold) {
    throw Error("--weights: " + std::to_string(chroma.weights.size()) +
                " numbers, but --threshold " + std::to_string(chroma.threshold) + " takes as many");
  }
  const std::vector<int> used = chroma.used_weights();
  const int least = *std::min_element(used.begin(), used.end());
  const int neighbours = window_of(chroma).neighbours;
  if (kCentreWeight + neighbours * least <= 0) {
    throw Error("--weights: " + std::to_string(neighbours) + " neighbours of weight " +
                std::to_string(least) + " would outweigh the centre, which has " +
                std::to_string(kCentreWeight));
  }
}

// Repeats the first and the last row around the plane. Small planes are filtered with what lies
// above and below them, which in a fixed layout is what the buffer has there.
void repeat_borders(Frame& frame, const Room& room) {
  const size_t stride = frame.layout().stride;
  const auto width = static_cast<size_t>(frame.width());
  uint8_t* const first = frame.chroma_row(0);
  uint8_t* const last = frame.chroma_row(frame.height() / 2 - 1);
  uint8_t* const end = first + room.chroma;
  for (size_t at = stride; at <= room.before_chroma; at += stride) {
    std::copy_n(first, width, first - at);
  }
  for (uint8_t* row = last + stride; row < end; row += stride) std::copy_n(last, width, row);
}

void run_strips(const Window& window, const T_UVDenoiseParam& param, bool parallel) {
  uint32_t numbers[kZavriStrips];
  T_ThreadPoolTaskInput inputs[kZavriStrips];
  for (uint32_t k = 0; k < kZavriStrips; ++k) {
    numbers[k] = k;
    inputs[k] = {&numbers[k], nullptr, &param};
    if (!parallel) window.strip(&numbers[k], &param, nullptr);
  }
  if (!parallel) return;
  ThreadPoolWorker worker(g_threadpool, kZavriStrips, window.strip, inputs);
  worker.Work();
}

}  // namespace

Settings Chroma::settings() {
  std::vector<std::pair<std::string, int>> all_taps;
  for (const Window& window : kWindows) {
    all_taps.emplace_back(std::to_string(window.taps), window.taps);
  }
  const auto read = [this](const std::string& path) {
    weights = read_weights(path);
    weights_file_ = path;
    return true;
  };
  return {
      choice<int>("taps", taps, all_taps, "samples of the window"),
      whole_number("threshold", threshold, 1, 127, "differences below this one count"),
      or_auto(real_number("falloff", falloff, 0.1, 1000,
                          "sigma of weights that fall as a Gaussian; auto is half the threshold"),
              falloff),
      {"weights", "FILE", "with the weights of the differences 0, 1, 2 ..", read,
       [this] { return weights_file_; }},
      flag("legacy", legacy, "the older filter with its fixed tolerance"),
      flag("parallel", parallel, "all strips at once, on the library's pool")};
}

void Chroma::check(const Size& size, int frames) const {
  check_count(frames);
  if (legacy && (taps != kLegacyWindow.taps || threshold != kDefaultThreshold || falloff > 0 ||
                 !weights.empty())) {
    throw Error("--legacy: has " + std::to_string(kLegacyWindow.taps) +
                " taps and a tolerance of its own, and goes without --taps, --threshold, "
                "--falloff and --weights");
  }
  if (falloff > 0 && !weights.empty()) throw Error("--falloff: goes without --weights");
  check_weights(*this);
  const Window& window = window_of(*this);
  if (size.width >= window.least_width && window.is_high_enough(size.height)) return;
  throw Error("--taps " + std::to_string(window.taps) + ": " + size.text() +
              " is too small, they take " + Size{window.least_width, window.safe_height()}.text());
}

std::vector<int> Chroma::used_weights() const {
  std::vector<int> used = weights;
  if (used.empty()) {
    const double sigma = falloff > 0 ? falloff : threshold / 2.0;
    for (int d = 0; d < threshold; ++d) {
      const double share = std::exp(-0.5 * d * d / (sigma * sigma));
      used.push_back(static_cast<int>(std::lround(kCentreWeight * share)));
    }
  }
  used.resize(static_cast<size_t>(threshold));
  return used;
}

Result Chroma::run(const Frames& frames, int runs) const {
  const Frame& frame = frames.front();
  check(size_of(frame), static_cast<int>(frames.size()));
  expect_stride(frame, INT16_MAX, "chroma is denoised with");
  const Window& window = window_of(*this);
  T_UVDenoiseParam param{};
  param.width = static_cast<uint32_t>(frame.width());
  param.height = static_cast<uint32_t>(frame.height() / 2);
  param.stride = static_cast<uint32_t>(frame.layout().stride);
  param.kernel_size = static_cast<int8_t>(window.taps);
  param.threshold = static_cast<int8_t>(threshold);
  const std::vector<int> used = used_weights();
  std::copy(used.begin(), used.end(), param.weight_table);
  if (parallel) start_pool();

  Result result;
  result.frame = frame;
  const Room room{0, zavri_room_uv_denoise_before(&param), zavri_room_uv_denoise(&param)};
  Frame copy;
  const auto prepare = [&] {
    copy = roomy_copy(frame, frame, room);
    if (!copy.layout().fixed) repeat_borders(copy, room);
    param.uv_plane = copy.chroma_row(0);
  };
  result.seconds = median_seconds(runs, prepare, [&] { run_strips(window, param, parallel); });
  copy_picture(copy, result.frame);
  if (parallel) result.remarks.push_back("--parallel: the rows where strips meet depend on timing");
  const bool leaves_plane =
      room.before_chroma > 0 || room.chroma > param.stride * size_t{param.height};
  if (leaves_plane && !legacy && frame.layout().fixed) {
    result.remarks.push_back("the windows are higher than the strips, so that the result depends " +
                             std::string("on what lies in front of and behind the chroma plane"));
  }
  return result;
}

}  // namespace zavri::tools
