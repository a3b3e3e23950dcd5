#include "tests/support/pictures.h"

#include <gtest/gtest.h>

#include <cmath>

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
