#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <numeric>

#include "autoshoot/row_sums.h"
#include "include/zavricustpro.h"
#include "tests/support/samples.h"
#include "tests/support/use_build.h"

namespace zavri::testing {
namespace {

TEST(AutoShoot, RowSumsOfEveryBuildEqualThePlainRule) {
  std::vector<size_t> widths(3 * 32 + 3);
  std::iota(widths.begin(), widths.end(), size_t{0});
  widths.push_back(3 * 4096 + 5);  // more than lanes of 16 bits gather
  Random random(1);
  for (const size_t width : widths) {
    for (const Style style : kStyles) {
      // The plane is exactly as long as the sums may read.
      const std::vector<uint8_t> a = samples(random, style, width);
      const std::vector<uint8_t> b = samples(random, style, width);
      const auto mean = static_cast<uint8_t>(random());
      uint32_t sums[3] = {};
      for (size_t i = 0; i < width; ++i) {
        sums[0] += a[i];
        sums[1] += static_cast<uint32_t>(std::abs(a[i] - b[i]));
        sums[2] += static_cast<uint32_t>(std::abs(a[i] - mean));
      }
      for (const Build build : builds_here()) {
        SCOPED_TRACE(::testing::Message() << build_name(build) << " width " << width);
        const RowSumKernels& kernels = row_sum_kernels(build);
        EXPECT_EQ(kernels.samples(a.data(), width), sums[0]);
        EXPECT_EQ(kernels.differences(a.data(), b.data(), width), sums[1]);
        EXPECT_EQ(kernels.deviations(a.data(), width, mean), sums[2]);
      }
    }
  }
}

// Counts the measures, of four, that find something.
int measures_above_zero(const uint8_t* luma, const T_OptRect& rect, uint32_t width,
                        uint32_t height) {
  zavri_auto_shoot_opt_set_FV_rect(&rect);
  return (zavri_auto_shoot_opt_get_FV_value(luma, &rect, width, height) > 0) +
         (zavri_auto_shoot_opt_get_FV_value_derivation(luma, width, height) > 0) +
         (zavri_auto_shoot_opt_get_FV_value_average(luma, width, height) > 0) +
         (zavri_auto_shoot_opt_get_bright(luma, &rect, width, height) > 0);
}

TEST(AutoShoot, RefusesNegativeFieldsAndMissingMargins) {
  constexpr int32_t kMost = INT32_MAX;
  const struct {
    T_OptRect rect;
    int measures;
  } kCases[] = {
      {{0, 0, 19, 11}, 4},       {{15, 7, 4, 4}, 4},        {{15, 9, 4, 1}, 1},
      {{3, 2, 0, 4}, 0},         {{3, 2, 4, 0}, 0},         {{-1, 0, 4, 4}, 0},
      {{0, -1, 4, 4}, 0},        {{4, 4, -1, 4}, 0},        {{4, 4, 4, -1}, 0},
      {{0, 0, 20, 4}, 0},        {{16, 0, 4, 4}, 0},        {{0, 0, 4, 12}, 0},
      {{0, 8, 4, 4}, 0},         {{1, 0, kMost, 4}, 0},     {{0, 1, 4, kMost}, 0},
      {{kMost, 0, kMost, 4}, 0}, {{0, kMost, 4, kMost}, 0},
  };
  Random random(3);
  const std::vector<uint8_t> luma = samples(random, Style::kUniform, 20 * 12);
  for (const auto& c : kCases) {
    EXPECT_EQ(measures_above_zero(luma.data(), c.rect, 20, 12), c.measures)
        << c.rect.x << ' ' << c.rect.y << ' ' << c.rect.width << ' ' << c.rect.height;
  }
  EXPECT_EQ(measures_above_zero(nullptr, {0, 0, 4, 4}, 20, 12), 0);
}

// One bright sample outside a rectangle two columns wide counts where a group of four rows starts
// with it.
TEST(AutoShoot, GroupsOfTheFocusValueDrift) {
  const struct {
    uint32_t image_width;
    int32_t height;
    size_t bright;
    uint32_t focus;
  } kCases[] = {
      {20, 8, 4 * 20 - 1, 200},
      {20, 8, 5 * 20 - 1, 200},
      {20, 7, 4 * 20 - 1, 0},                      // there is no second group
      {20, 12, 8 * 20 - 2, 200},                   // group 2 begins two columns further left
      {16400, 8, 1 + 4 * 16400 - 2 - 65536, 200},  // jumps are cut to 16 bits
      {3, 4 * 65537, 3 * 4 - 1, 0},                // the count of groups is cut too, here to one
      {3, 4 * 65537, 3 * (4 * 65537 - 1), 200},    // the last row of a tall rectangle counts, too
  };
  for (const auto& c : kCases) {
    const auto image_height = static_cast<uint32_t>(c.height) + 1;
    std::vector<uint8_t> luma(size_t{c.image_width} * image_height);
    luma[c.bright] = 200;
    const T_OptRect rect{0, 0, 2, c.height};
    EXPECT_EQ(zavri_auto_shoot_opt_get_FV_value(luma.data(), &rect, c.image_width, image_height),
              c.focus)
        << c.image_width << ' ' << c.height << ' ' << c.bright;
  }
}

TEST(AutoShoot, KeepsWhatTheHostSets) {
  zavri_auto_shoot_opt_set_lock_status(UINT32_MAX);
  zavri_auto_shoot_opt_set_auto_shdr_status(static_cast<uint8_t>(511));
  zavri_auto_shoot_opt_set_status(7);
  EXPECT_EQ(zavri_auto_shoot_opt_get_lock_status(), UINT32_MAX);
  EXPECT_EQ(zavri_auto_shoot_opt_get_auto_shdr_status(), 255);
  EXPECT_EQ(zavri_auto_shoot_opt_get_status(), 0);

  const T_OptRect rect{-5, INT32_MAX, 3, INT32_MIN};
  zavri_auto_shoot_opt_set_FV_rect(&rect);
  zavri_auto_shoot_opt_set_FV_rect(nullptr);
  T_OptRect kept{};
  zavri_auto_shoot_opt_get_FV_rect(&kept);
  zavri_auto_shoot_opt_get_FV_rect(nullptr);
  EXPECT_EQ(memcmp(&kept, &rect, sizeof rect), 0);
  EXPECT_EQ(memcmp(&tOptRect, &rect, sizeof rect), 0);
}

}  // namespace
}  // namespace zavri::testing
