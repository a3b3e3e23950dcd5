#include <gtest/gtest.h>

#include "rnr/blend.h"
#include "rnr/weights.h"
#include "tests/support/samples.h"
#include "tests/support/use_build.h"

namespace zavri::testing {
namespace {

using Bytes = std::vector<uint8_t>;

constexpr size_t kGuard = 40;

// Holds the weights of one build, with what lies around them.
std::pair<Bytes, Bytes> weights(Build build, size_t count, int32_t dx, int32_t dy,
                                const WeightRule& rule) {
  Bytes blur(count + 2 * kGuard, 0xa5);
  Bytes keep(count + 2 * kGuard, 0x5a);
  weigh_kernel(build)(blur.data() + kGuard, keep.data() + kGuard, count, dx, dy, rule);
  return {blur, keep};
}

constexpr uint32_t kStep = ZAVRI_EXHAUSTIVE ? 1 : 17;

// For spans about powers of 2, and every weight up to a few `full`, this tries the D at which the
// weight is reached and the last one before it.
TEST(RnrWeights, TheQuotientIsExactWhereItChanges) {
  constexpr size_t kCount = 32;
  Random random(2);
  for (uint32_t power = 14; power <= 24; ++power) {
    for (int around = -2; around <= 2; ++around) {
      for (const int full : {1, 127, 128}) {
        const int32_t span = (1 << power) + around;
        if (int64_t{span} * full > INT32_MAX) continue;
        for (uint32_t weight = 1; weight <= static_cast<uint32_t>(full); weight += kStep) {
          const auto reached = static_cast<int32_t>((int64_t{weight} * span + full - 1) / full);
          for (const int32_t distance : {reached - 1, reached}) {
            // Pixel `place` of the row has this D, all others have more.
            const auto place = static_cast<size_t>(random() % kCount);
            const WeightRule rule = {-distance, span, static_cast<uint8_t>(full)};
            const uint8_t expected = static_cast<uint8_t>(
                distance >= span ? full : static_cast<int32_t>(int64_t{full} * distance / span));
            for (const Build build : builds_here()) {
              const Bytes blur =
                  weights(build, kCount, -static_cast<int32_t>(place), 0, rule).first;
              ASSERT_EQ(+blur[kGuard + place], +expected)
                  << build_name(build) << " span " << span << " full " << full << " D " << distance;
            }
          }
        }
      }
    }
  }
}

// Tries every weight with every pair of samples.
TEST(RnrBlend, FollowsTheRuleForAllValues) {
  constexpr size_t kPairs = 256 * 256;
  Bytes sharp(kPairs);
  Bytes blurred(kPairs);
  for (size_t i = 0; i < kPairs; ++i) {
    sharp[i] = static_cast<uint8_t>(i);
    blurred[i] = static_cast<uint8_t>(i >> 8);
  }
  Bytes expected(kPairs);
  for (uint32_t weight = 0; weight < 256; weight += kStep) {
    const Bytes weights(kPairs, static_cast<uint8_t>(weight));
    for (size_t i = 0; i < kPairs; ++i) {
      const uint32_t mixed = ((128 - weight) * sharp[i] + weight * blurred[i]) / 128;
      expected[i] = weight >= 121 ? blurred[i] : static_cast<uint8_t>(mixed);
    }
    for (const Build build : builds_here()) {
      Bytes actual = sharp;
      blend_kernel(build)(actual.data(), sharp.data(), blurred.data(), weights.data(), kPairs);
      ASSERT_TRUE(actual == expected) << build_name(build) << " weight " << weight;
    }
  }
}

}  // namespace
}  // namespace zavri::testing
