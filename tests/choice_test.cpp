#include "tools/tuning/choice.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "tools/report/noise_plots.h"
#include "tools/sensor/noise_fit.h"

namespace zavri::tools {
namespace {

// Candidates remove so much noise and leave such ghosts; the defaults remove 1 dB.
Trial trial(const std::string& picture, int gain,
            const std::vector<std::pair<double, double>>& candidates) {
  const auto score = [](double noise, double ghosts) {
    return Score{{noise, 30, ghosts}, {noise, 30, 0.0}};
  };
  Trial made{picture, gain, true, score(0, 0), score(1, 0), {}};
  for (const auto& [noise, ghosts] : candidates) made.scores.push_back(score(noise, ghosts));
  return made;
}

TEST(Choice, IsWorthMostOfThoseWithoutGhostsThatMayFollowEachOther) {
  const Trials trials = {trial("a", 8, {{1, 0}, {3, 0}, {2, 0}}),
                         trial("a", 16, {{4, 0}, {3, 0}, {5, 0.5}})};
  const std::vector<size_t> all = {0, 1, 2};
  const auto any = [](size_t, size_t) { return true; };
  const auto rising = [](size_t last, size_t next) { return next >= last; };
  const auto chosen = best_choice(trials, all, Planes::kBoth, any);
  EXPECT_EQ(chosen, (Choice{{8, 1}, {16, 0}}));
  EXPECT_EQ(best_choice(trials, all, Planes::kBoth, rising), (Choice{{8, 1}, {16, 1}}));
  EXPECT_EQ(best_choice(trials, {2}, Planes::kBoth, any), std::nullopt);
  EXPECT_EQ(difference(trials, *chosen, Planes::kBoth), 2.5);
}

TEST(Choice, IsJudgedByPicturesThatItWasNotMadeBy) {
  const Trials trials = {trial("a", 8, {{6, 0}, {2, 0}}), trial("b", 8, {{3, 0}, {7, 0}})};
  const HeldOut held = hold_out(trials, Planes::kBoth, 1, [](const Trials& others) {
    return best_choice(others, {0, 1}, Planes::kBoth, [](size_t, size_t) { return true; });
  });
  ASSERT_EQ(held.pictures.size(), 2u);
  EXPECT_EQ(held.pictures[0].difference, 1);
  EXPECT_EQ(held.pictures[1].difference, 2);
  EXPECT_EQ(held.difference.mean, 1.5);
  EXPECT_EQ(held.difference.low, 1);
  EXPECT_EQ(held.difference.high, 2);
}

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
