#include "tools/report/noise_plots.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "tools/sensor/noise_fit.h"

namespace zavri::tools {
namespace {

// Where the target is noisy itself, its noise is no part of what is shown.
TEST(NoisePlots, LeaveOutTheNoiseOfTheTarget) {
  const auto noisy = [](unsigned seed) {
    std::mt19937 random(seed);
    Frame frame(320, 320, ChromaOrder::kUv);
    for (uint8_t& byte : frame.buffer()) byte = static_cast<uint8_t>(96 + random() % 9);
    return frame;
  };
  NoiseFit fit;
  for (PlaneNoise& plane : fit) plane.levels = {{100, 60.0 / 9, 64}};
  Frame after(320, 320, ChromaOrder::kUv);
  std::fill(after.buffer().begin(), after.buffer().end(), uint8_t{100});
  const std::vector<PagePlot> plots = noise_by_level(noisy(1), noisy(2), after, &fit);
  ASSERT_EQ(plots.size(), 2u);
  for (const PagePlot& plot : plots) {
    EXPECT_NEAR(plot.series[0].y.at(0), 0, 0.5) << plot.title;
    EXPECT_NEAR(plot.series[1].y.at(0), std::sqrt(60.0 / 9), 0.2) << plot.title;
  }
}

}  // namespace
}  // namespace zavri::tools
