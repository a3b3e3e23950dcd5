#include "tools/images/metrics.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace zavri::tools {
namespace {

TEST(Metrics, AgreeWithHandComputedValues) {
  Frame a(16, 16);
  Frame b(16, 16);
  std::fill_n(a.luma_row(0), 256, 100);
  std::fill_n(b.luma_row(0), 256, 110);
  b.chroma_row(0)[0] = 16;  // one U of 64
  const std::vector<PlaneDifference> planes = compare(a, b);
  EXPECT_NEAR(planes[0].psnr, 10 * std::log10(255.0 * 255 / 100), 1e-9);
  EXPECT_EQ(planes[0].largest, 10);
  // Flat windows: only the means count.
  EXPECT_NEAR(planes[0].ssim, (2 * 100 * 110 + 6.5025) / (100 * 100 + 110 * 110 + 6.5025), 1e-9);
  EXPECT_NEAR(planes[1].psnr, 10 * std::log10(255.0 * 255 / (256.0 / 64)), 1e-9);
  EXPECT_LT(planes[1].ssim, 1);
  EXPECT_TRUE(std::isinf(planes[2].psnr));
  EXPECT_EQ(planes[2].ssim, 1);

  // One window of known variances: a ramp against its half.
  Frame ramp(8, 8);
  Frame half(8, 8);
  for (int i = 0; i < 64; ++i) {
    ramp.luma_row(0)[i] = static_cast<uint8_t>(4 * (i % 8));
    half.luma_row(0)[i] = static_cast<uint8_t>(2 * (i % 8));
  }
  const double variance = 16 * 5.25;  // of 0, 4 .. 28
  EXPECT_NEAR(compare(ramp, half)[0].ssim,
              (2 * 14 * 7 + 6.5025) * (2 * variance / 2 + 58.5225) /
                  ((14 * 14 + 7 * 7 + 6.5025) * (variance * 1.25 + 58.5225)),
              1e-9);
}

}  // namespace
}  // namespace zavri::tools
