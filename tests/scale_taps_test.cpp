#include "platform/host/scale_taps.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>

#include "tests/support/samples.h"

namespace zavri::testing {
namespace {

constexpr uint32_t kLargest = 0x7fffffff;

struct Counts {
  uint32_t from, to;
};

std::vector<Counts> counts() {
  std::vector<Counts> all = {{1, 1},     {1, kLargest}, {kLargest, 1}, {kLargest, kLargest},
                             {2, 3},     {3, 2},        {7, 7 * 64},   {kLargest - 1, kLargest},
                             {640, 1280}};
  Random random(1);
  for (int i = 0; i < 300; ++i) {
    const int bits = pick(random, 1, 31);
    all.push_back({1 + static_cast<uint32_t>(random()) % (kLargest >> (31 - bits)),
                   1 + static_cast<uint32_t>(random()) % (kLargest >> (31 - bits))});
  }
  return all;
}

// Position in long double, whose 64 bits hold it more finely than any weight.
long double exact(uint32_t i, Counts c) { return (i + 0.5L) * c.from / c.to - 0.5L; }

TEST(ScaleTaps, PositionsAreExactHoweverLongTheWalk) {
  for (const Counts c : counts()) {
    for (const int bits : {0, 8, 16}) {
      Positions walk(c.from, c.to, bits);
      for (uint32_t i = 0; i < std::min(c.to, 3000u); ++i, walk.advance()) {
        const long double position = std::ldexp(exact(i, c), bits);
        EXPECT_NEAR(position - walk.floor(), 0.5, 0.5 + 1e-6) << c.from << ' ' << c.to << ' ' << i;
        EXPECT_NEAR(position - walk.nearest(), 0, 0.5 + 1e-6) << c.from << ' ' << c.to << ' ' << i;
      }
    }
  }
}

// Where taps would lie outside, the weights of the end sample add up.
template <class Walk>
void expect_weights(Walk walk, Counts c, int one, double tolerance, double (*kernel)(double)) {
  for (uint32_t i = 0; i < std::min(c.to, 500u); ++i) {
    const Taps taps = walk.next();
    ASSERT_EQ(std::accumulate(taps.weights, taps.weights + 4, 0), one);
    double expected[4] = {};
    const auto position = static_cast<double>(exact(i, c));
    const auto base = static_cast<int64_t>(std::floor(position));
    for (int64_t at = base - 1; at <= base + 2; ++at) {
      const int64_t inside = std::clamp<int64_t>(at, 0, int64_t{c.from} - 1) - taps.first;
      const double weight = one * kernel(std::abs(position - static_cast<double>(at)));
      if (inside < 0 || inside >= 4) {
        ASSERT_NEAR(0, weight, tolerance);
      } else {
        expected[inside] += weight;
      }
    }
    for (uint32_t j = 0; j < 4; ++j) {
      ASSERT_NEAR(taps.weights[j], expected[j], tolerance)
          << c.from << " to " << c.to << " sample " << i << " tap " << j;
      ASSERT_TRUE(taps.first + j < c.from || taps.weights[j] == 0);
    }
  }
}

double linear(double distance) { return std::max(0.0, 1 - distance); }

double spline(double d) {
  if (d < 1) return 1 - 2.5 * d * d + 1.5 * d * d * d;
  return d < 2 ? 2 - 4 * d + 2.5 * d * d - 0.5 * d * d * d : 0;
}

TEST(ScaleTaps, WeightsAreThoseOfTheFilter) {
  for (const Counts c : counts()) {
    // Positions of a far larger source are coarser in double than the tolerance.
    if (c.from > 1 << 20) continue;
    expect_weights(LinearTaps(c.from, c.to, 8), c, 1 << 8, 0.5 + 1e-3, linear);
    // Three roundings leave up to 1.5 over for one weight, and positions are rounded down.
    expect_weights(SplineTaps(c.from, c.to), c, 1 << SplineTaps::kBits, 2, spline);
  }
}

TEST(ScaleTaps, BitsNeededIsTheLeastThatIsExact) {
  for (uint32_t from = 1; from <= 70; ++from) {
    for (uint32_t to = 1; to <= 70; ++to) {
      const auto is_exact = [&](int bits) {
        for (uint32_t i = 0; i < to; ++i) {
          const int64_t twice = (2 * int64_t{i} + 1) * from - to;
          if ((twice * (1 << bits)) % (2 * int64_t{to}) != 0) return false;
        }
        return true;
      };
      int bits = 0;
      while (bits < LinearTaps::kMostBits && !is_exact(bits)) ++bits;
      EXPECT_EQ(LinearTaps::bits_needed(from, to), bits) << from << ' ' << to;
    }
  }
}

}  // namespace
}  // namespace zavri::testing
