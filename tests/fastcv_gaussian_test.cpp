#include <gtest/gtest.h>

#include <algorithm>

#include "platform/fastcv.h"
#include "tests/support/samples.h"
#include "tests/support/use_build.h"

namespace zavri::testing {
namespace {

constexpr uint8_t kUntouched = 0xee;

std::vector<uint8_t> model(const std::vector<uint8_t>& from, int width, int height, bool borders) {
  constexpr int kWeights[] = {1, 4, 6, 4, 1};
  std::vector<uint8_t> to(from.size(), kUntouched);
  const int edge = borders ? 0 : 2;
  for (int y = edge; y < height - edge; ++y) {
    for (int x = edge; x < width - edge; ++x) {
      int sum = 128;
      for (int j = -2; j <= 2; ++j) {
        for (int i = -2; i <= 2; ++i) {
          const int row = std::clamp(y + j, 0, height - 1);
          const int column = std::clamp(x + i, 0, width - 1);
          sum += kWeights[i + 2] * kWeights[j + 2] * from[row * width + column];
        }
      }
      to[y * width + x] = static_cast<uint8_t>(sum >> 8);
    }
  }
  return to;
}

void expect_model(int width, int height, Style style, Random& random) {
  const std::vector<uint8_t> from =
      samples(random, style, static_cast<size_t>(width) * static_cast<size_t>(height));
  for (const int borders : {0, 1}) {
    const std::vector<uint8_t> expected = model(from, width, height, borders != 0);
    for (const Build build : builds_here()) {
      const UseBuild use(build);
      std::vector<uint8_t> to(from.size(), kUntouched);
      fcvFilterGaussian5x5u8(from.data(), static_cast<uint32_t>(width),
                             static_cast<uint32_t>(height), to.data(), borders);
      ASSERT_EQ(to, expected) << build_name(build) << ' ' << width << 'x' << height << " borders "
                              << borders;
    }
  }
}

TEST(FastcvGaussian, EqualsTheModelForEverySize) {
  Random random(1);
  for (int width = 1; width <= 3 * 32 + 4; ++width) {
    for (const Style style : kStyles) expect_model(width, pick(random, 1, 8), style, random);
  }
  // The heights lie around the number of rows that are worked at a time, once and twice.
  for (int height = 14; height <= 38; ++height) expect_model(70, height, Style::kUniform, random);
}

TEST(FastcvGaussian, LargestValuesFitAndNothingIsDoneToNothing) {
  const std::vector<uint8_t> white(40 * 6, 255);
  for (const Build build : builds_here()) {
    const UseBuild use(build);
    std::vector<uint8_t> to(white.size(), 0);
    fcvFilterGaussian5x5u8(white.data(), 0, 6, to.data(), 1);
    fcvFilterGaussian5x5u8(white.data(), 40, 0, to.data(), 1);
    EXPECT_EQ(to, std::vector<uint8_t>(white.size(), 0));
    fcvFilterGaussian5x5u8(white.data(), 40, 6, to.data(), 1);
    EXPECT_EQ(to, white) << build_name(build);
  }
}

}  // namespace
}  // namespace zavri::testing
