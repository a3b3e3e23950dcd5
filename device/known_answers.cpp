#include "device/known_answers.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <map>
#include <sstream>

#include "include/zavricustpro.h"

namespace zavri {
namespace {

using Bytes = std::vector<uint8_t>;

struct Case {
  std::string operation;
  std::map<std::string, std::string> values;

  explicit Case(const std::string& line) {
    std::istringstream words(line);
    words >> operation;
    for (std::string word; words >> word;) {
      const size_t equals = word.find('=');
      values[word.substr(0, equals)] = word.substr(equals + 1);
    }
  }

  // Negative numbers come back modulo 2^32.
  uint32_t number(const char* key) const {
    return static_cast<uint32_t>(strtoll(values.at(key).c_str(), nullptr, 10));
  }
  uint16_t half(const char* key) const { return static_cast<uint16_t>(number(key)); }
  uint8_t byte(const char* key) const { return static_cast<uint8_t>(number(key)); }
};

Bytes fill(const Case& known, uint32_t index, size_t size) {
  Bytes bytes(size);
  const uint32_t shift = known.number("shift");
  const uint32_t span = known.number("span");
  uint32_t x = known.number("seed") + index;
  if (x == 0) x = 1;
  for (size_t i = 0; i < size; ++i) {
    x ^= x << 13;
    x ^= x >> 17;
    x ^= x << 5;
    bytes[i] = static_cast<uint8_t>(40 + ((i >> shift) & 127) + x % span);
  }
  return bytes;
}

Bytes fill(const Case& known, uint32_t index = 0) {
  return fill(known, index, known.number("size"));
}

std::string check_hash(const Case& known, const Bytes& bytes) {
  uint64_t hash = 1469598103934665603u;
  for (const uint8_t byte : bytes) hash = (hash ^ byte) * 1099511628211u;
  char text[17];
  snprintf(text, sizeof text, "%016" PRIx64, hash);
  return text == known.values.at("hash") ? "" : std::string("gave hash ") + text;
}

std::string run_denoise3d(const Case& known) {
  std::vector<Bytes> frames;
  T_3DYuvDenoiseParam param{};
  for (uint32_t k = 0; k < 4; ++k) frames.push_back(fill(known, k));
  for (uint32_t k = 0; k < 4; ++k) param.frame_y[k] = frames[k].data() + known.number("guard");
  param.ref_index = known.byte("ref_index");
  param.frame_num = known.byte("frame_num");
  param.switch_a = known.byte("switch_a");
  param.switch_b = known.byte("switch_b");
  param.switch_c = known.byte("switch_c");
  param.switch_d = known.byte("switch_d");
  param.thresh_tune = known.byte("thresh_tune");
  param.gain = known.byte("gain");
  param.thresh = known.byte("thresh");
  param.threshY = known.byte("threshY");
  param.width = known.number("width");
  param.height = known.number("height");
  param.y_stride = known.number("y_stride");
  param.uv_stride = known.number("uv_stride");
  param.uv_offset = known.number("uv_offset");
  for (int32_t strip = 0; strip < kZavriStrips; ++strip) {
    zavri_mp_3D_YUV_denoise_inner(&strip, &param, nullptr);
  }
  return check_hash(known, frames[param.ref_index]);
}

// A single frame is smoothed and nothing else. The first of its strips is all of the case.
std::string run_uv_run_smooth(const Case& known) {
  Bytes buffer = fill(known);
  T_3DYuvDenoiseParam param{};
  param.frame_num = 1;
  param.switch_d = 1;
  param.thresh = 2;  // below this, strips end at once
  param.width = known.number("width");
  param.height = 8 * known.number("rows");
  param.uv_stride = known.number("stride");
  param.frame_y[0] = buffer.data() + known.number("guard");
  const int32_t strip = 0;
  zavri_mp_3D_YUV_denoise_inner(&strip, &param, nullptr);
  return check_hash(known, buffer);
}

std::string run_rnr(const Case& known) {
  Bytes buffer = fill(known);
  zavri_mp_RNR_init_base(0, 0, 0, 0, 0);  // or a new strength would not count
  zavri_mp_RNR_init_base(known.number("width"), known.number("height"), known.number("stride"),
                         known.number("radius_percent"),
                         static_cast<int32_t>(known.number("strength_percent")));
  for (uint32_t tile = 0; tile < 12; ++tile) zavri_mp_RNR_init_weight(&tile);
  for (uint32_t tile = 0; tile < 12; ++tile) {
    zavri_mp_RNR_process_inner(&tile, buffer.data() + known.number("guard"));
  }
  return check_hash(known, buffer);
}

std::string run_auto_shoot(const Case& known) {
  const Bytes buffer = fill(known);
  const uint8_t* const luma = buffer.data() + known.number("guard");
  const uint32_t width = known.number("image_width");
  const uint32_t height = known.number("image_height");
  const auto field = [&](const char* key) { return static_cast<int32_t>(known.number(key)); };
  const T_OptRect rect{field("x"), field("y"), field("width"), field("height")};
  zavri_auto_shoot_opt_set_FV_rect(&rect);
  const std::pair<const char*, uint32_t> measures[] = {
      {"focus", zavri_auto_shoot_opt_get_FV_value(luma, &rect, width, height)},
      {"derivation", zavri_auto_shoot_opt_get_FV_value_derivation(luma, width, height)},
      {"average", zavri_auto_shoot_opt_get_FV_value_average(luma, width, height)},
      {"bright", zavri_auto_shoot_opt_get_bright(luma, &rect, width, height)},
  };
  std::string differences;
  for (const auto& [name, value] : measures) {
    if (value == known.number(name)) continue;
    differences += differences.empty() ? "gave " : " ";
    differences += name + ('=' + std::to_string(value));
  }
  return differences;
}

std::string run_compose(const Case& known) {
  T_ComposeParam param{};
  param.width = known.half("width");
  param.height = known.half("height");
  param.mode = known.number("mode");
  param.padding = known.half("padding");
  const size_t frame_size = size_t{param.width} * param.height * 3 / 2;
  const Bytes source1 = fill(known, 0, frame_size);
  const Bytes source2 = fill(known, 1, frame_size);
  Bytes output = fill(known, 2);
  param.src_frame1 = source1.data();
  param.src_frame2 = source2.data();
  param.dst_frame = output.data() + known.number("guard");
  const uint32_t result = zavri_mp_compose_two_same_frame(&param);
  return result == 0 ? check_hash(known, output) : "returned " + std::to_string(result);
}

std::string run_uv_denoise(const Case& known) {
  Bytes buffer = fill(known);
  T_UVDenoiseParam param{};
  param.width = known.number("width");
  param.height = known.number("height");
  param.stride = known.number("stride");
  param.uv_plane = buffer.data() + known.number("guard");
  param.kernel_size = static_cast<int8_t>(known.number("kernel_size"));
  param.threshold = static_cast<int8_t>(known.number("threshold"));
  const auto floor = static_cast<int32_t>(known.number("weight_floor"));
  for (uint32_t d = 0; d < std::size(param.weight_table); ++d) {
    const auto falling =
        static_cast<int32_t>(known.number("weight0") - d * known.number("weight_step"));
    param.weight_table[d] = static_cast<int8_t>(std::max(falling, floor));
  }
  const bool legacy = known.operation == "uv_denoise_legacy";
  const auto denoise = legacy ? zavri_mp_single_UV_denoise_inner_11 : zavri_mp_UV_denoise_inner;
  for (uint32_t strip = 0; strip < kZavriStrips; ++strip) denoise(&strip, &param, nullptr);
  return check_hash(known, buffer);
}

constexpr struct {
  const char* operation;
  std::string (*run)(const Case&);
} kRunners[] = {
    {"auto_shoot", run_auto_shoot},       {"compose", run_compose},
    {"denoise3d", run_denoise3d},         {"rnr", run_rnr},
    {"uv_denoise", run_uv_denoise},       {"uv_denoise_legacy", run_uv_denoise},
    {"uv_run_smooth", run_uv_run_smooth},
};

}  // namespace

std::vector<std::string> known_answer_cases(const KnownAnswerFile& file) {
  std::istringstream text(file.text);
  std::vector<std::string> cases;
  for (std::string line; std::getline(text, line);) cases.push_back(line);
  return cases;
}

std::string run_known_answer(const std::string& line) {
  const Case known(line);
  for (const auto& runner : kRunners) {
    if (known.operation == runner.operation) return runner.run(known);
  }
  return "no such operation";
}

}  // namespace zavri
