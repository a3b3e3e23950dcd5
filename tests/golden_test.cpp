#include "tests/support/golden.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "denoise3d/uv_run_smooth.h"
#include "include/zavricustpro.h"
#include "tests/support/use_build.h"

namespace zavri::testing {
namespace {

void run_denoise3d(const GoldenCase& golden) {
  std::vector<std::vector<uint8_t>> frames;
  T_3DYuvDenoiseParam param{};
  for (uint32_t k = 0; k < 4; ++k) frames.push_back(golden_buffer(golden, k));
  for (uint32_t k = 0; k < 4; ++k) param.frame_y[k] = frames[k].data() + golden.number("guard");
  const auto byte = [&](const char* key) { return static_cast<uint8_t>(golden.number(key)); };
  param.ref_index = byte("ref_index");
  param.frame_num = byte("frame_num");
  param.switch_a = byte("switch_a");
  param.switch_b = byte("switch_b");
  param.switch_c = byte("switch_c");
  param.switch_d = byte("switch_d");
  param.thresh_tune = byte("thresh_tune");
  param.gain = byte("gain");
  param.thresh = byte("thresh");
  param.threshY = byte("threshY");
  param.width = golden.number("width");
  param.height = golden.number("height");
  param.y_stride = golden.number("y_stride");
  param.uv_stride = golden.number("uv_stride");
  param.uv_offset = golden.number("uv_offset");
  for (int32_t strip = 0; strip < 4; ++strip) {
    zavri_mp_3D_YUV_denoise_inner(&strip, &param, nullptr);
  }
  EXPECT_EQ(fnv1a(frames[param.ref_index]), golden.hash());
}

void run_rnr(const GoldenCase& golden) {
  std::vector<uint8_t> buffer = golden_buffer(golden);
  const auto number = [&](const char* key) { return golden.number(key); };
  zavri_mp_RNR_init_base(0, 0, 0, 0, 0);  // or a new strength would not count
  zavri_mp_RNR_init_base(number("width"), number("height"), number("stride"),
                         number("radius_percent"), static_cast<int>(number("strength_percent")));
  for (uint32_t tile = 0; tile < 12; ++tile) zavri_mp_RNR_init_weight(&tile);
  for (uint32_t tile = 0; tile < 12; ++tile) {
    zavri_mp_RNR_process_inner(&tile, buffer.data() + number("guard"));
  }
  EXPECT_EQ(fnv1a(buffer), golden.hash());
}

void run_uv_run_smooth(const GoldenCase& golden) {
  std::vector<uint8_t> buffer = golden_buffer(golden);
  T_UvRunSmoothParam param{};
  param.level = 10;
  param.width = static_cast<uint16_t>(golden.number("width"));
  param.rows = static_cast<uint16_t>(golden.number("rows"));
  param.stride = static_cast<uint16_t>(golden.number("stride"));
  param.plane = buffer.data() + golden.number("guard");
  uv_run_smooth(&param);
  EXPECT_EQ(fnv1a(buffer), golden.hash());
}

void run_auto_shoot(const GoldenCase& golden) {
  const std::vector<uint8_t> buffer = golden_buffer(golden);
  const uint8_t* const luma = buffer.data() + golden.number("guard");
  const uint32_t width = golden.number("image_width");
  const uint32_t height = golden.number("image_height");
  const auto field = [&](const char* key) { return static_cast<int32_t>(golden.number(key)); };
  const T_OptRect rect{field("x"), field("y"), field("width"), field("height")};
  zavri_auto_shoot_opt_set_FV_rect(&rect);
  EXPECT_EQ(zavri_auto_shoot_opt_get_FV_value(luma, &rect, width, height), golden.number("focus"));
  EXPECT_EQ(zavri_auto_shoot_opt_get_FV_value_derivation(luma, width, height),
            golden.number("derivation"));
  EXPECT_EQ(zavri_auto_shoot_opt_get_FV_value_average(luma, width, height),
            golden.number("average"));
  EXPECT_EQ(zavri_auto_shoot_opt_get_bright(luma, &rect, width, height), golden.number("bright"));
}

void run_compose(const GoldenCase& golden) {
  T_ComposeParam param{};
  param.width = static_cast<uint16_t>(golden.number("width"));
  param.height = static_cast<uint16_t>(golden.number("height"));
  param.mode = golden.number("mode");
  param.padding = static_cast<uint16_t>(golden.number("padding"));
  GoldenCase frame = golden;
  frame.values["size"] = std::to_string(param.width * param.height * 3 / 2);
  const std::vector<uint8_t> source1 = golden_buffer(frame, 0);
  const std::vector<uint8_t> source2 = golden_buffer(frame, 1);
  std::vector<uint8_t> output = golden_buffer(golden, 2);
  param.src_frame1 = source1.data();
  param.src_frame2 = source2.data();
  param.dst_frame = output.data() + golden.number("guard");
  EXPECT_EQ(zavri_mp_compose_two_same_frame(&param), 0u);
  EXPECT_EQ(fnv1a(output), golden.hash());
}

void run_uv_denoise(const GoldenCase& golden) {
  std::vector<uint8_t> buffer = golden_buffer(golden);
  T_UVDenoiseParam param{};
  param.width = golden.number("width");
  param.height = golden.number("height");
  param.stride = golden.number("stride");
  param.uv_plane = buffer.data() + golden.number("guard");
  // Unsigned arithmetic holds the few negative numbers as well.
  param.kernel_size = static_cast<int8_t>(golden.number("kernel_size"));
  param.threshold = static_cast<int8_t>(golden.number("threshold"));
  for (uint32_t d = 0; d < std::size(param.weight_table); ++d) {
    const auto falling =
        static_cast<int>(golden.number("weight0") - d * golden.number("weight_step"));
    const auto floor = static_cast<int>(golden.number("weight_floor"));
    param.weight_table[d] = static_cast<int8_t>(std::max(falling, floor));
  }
  const bool legacy = golden.operation == "uv_denoise_legacy";
  const auto denoise = legacy ? zavri_mp_single_UV_denoise_inner_11 : zavri_mp_UV_denoise_inner;
  for (uint32_t strip = 0; strip < 4; ++strip) denoise(&strip, &param, nullptr);
  EXPECT_EQ(fnv1a(buffer), golden.hash());
}

struct GoldenFile {
  const char* name;
  size_t cases;
  void (*run)(const GoldenCase&);
};

constexpr GoldenFile kFiles[] = {
    {"auto_shoot.txt", 60, run_auto_shoot}, {"compose.txt", 40, run_compose},
    {"denoise3d.txt", 120, run_denoise3d},  {"rnr.txt", 30, run_rnr},
    {"uv_denoise.txt", 60, run_uv_denoise}, {"uv_run_smooth.txt", 40, run_uv_run_smooth},
};

TEST(Golden, EveryCaseInEveryBuild) {
  for (const GoldenFile& file : kFiles) {
    const std::vector<GoldenCase> cases = load_golden(file.name);
    EXPECT_EQ(cases.size(), file.cases) << file.name;
    for (const Build build : builds_here()) {
      const UseBuild use(build);
      for (const GoldenCase& golden : cases) {
        SCOPED_TRACE(::testing::Message() << build_name(build) << ": " << golden);
        file.run(golden);
      }
    }
  }
}

}  // namespace
}  // namespace zavri::testing
