#include "tools/tuning/choice.h"

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace zavri::tools
