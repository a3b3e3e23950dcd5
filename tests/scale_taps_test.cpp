#include "platform/host/scale_taps.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "tests/support/samples.h"

namespace zavri::host {
namespace {

using testing::pick;
using testing::Random;

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

// Returns a position in long double, whose 64 bits hold it more finely than any weight.
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

}  // namespace
}  // namespace zavri::host
