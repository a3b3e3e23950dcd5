#include "tests/support/pictures.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "tools/images/metrics.h"

namespace zavri::tools {

Picture scene(int width, int height) {
  Picture picture(width, height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      uint8_t* const rgb = &picture.rgb[3 * (static_cast<size_t>(y) * width + x)];
      rgb[0] = static_cast<uint8_t>(50 + 150.0 * x / width + 45 * std::sin(0.05 * y));
      rgb[1] = static_cast<uint8_t>(50 + 150.0 * y / height + 45 * std::sin(0.07 * x));
      rgb[2] = static_cast<uint8_t>(128 + 120 * std::sin(0.02 * (x - 2 * y)));
    }
  }
  return picture;
}

Picture half_textured(int width, int height) {
  std::mt19937 random(7);
  const auto level = [&] { return static_cast<int>(random() % 41) - 20; };
  std::vector<int> coarse(static_cast<size_t>(width));
  Picture picture(width, height);
  for (int y = 0; y < height; ++y) {
    const bool textured = y >= height / 2;
    if (y % 3 == 0) std::generate(coarse.begin(), coarse.end(), level);
    for (int x = 0; x < width; ++x) {
      const int texture = textured ? coarse[static_cast<size_t>(x / 3)] + level() / 3 : 0;
      const int grey = 32 + 192 * (x / 32) / (width / 32) + texture;
      std::fill_n(&picture.rgb[3 * (static_cast<size_t>(y) * static_cast<size_t>(width) +
                                    static_cast<size_t>(x))],
                  3, static_cast<uint8_t>(std::clamp(grey, 0, 255)));
    }
  }
  return picture;
}

Bytes y4m(int width, int height, const std::string& tags, const std::vector<Bytes>& frames) {
  std::string text = "YUV4MPEG2 W" + std::to_string(width) + " H" + std::to_string(height) +
                     " F25:1 " + tags + '\n';
  for (const Bytes& frame : frames) text += "FRAME\n" + std::string(frame.begin(), frame.end());
  return {text.begin(), text.end()};
}

void expect_near(const Frame& frame, const Frame& expected, double decibels) {
  ASSERT_EQ(frame.size(), expected.size());
  for (const PlaneDifference& plane : compare(frame, expected)) {
    EXPECT_GE(plane.psnr, decibels) << plane.plane;
  }
}

}  // namespace zavri::tools
