#include <gtest/gtest.h>

#include "simd/overlap.h"
#include "tests/support/use_build.h"

namespace zavri::testing {
namespace {

TEST(Builds, TheLongestVectorsThatRunHereAreTaken) {
  EXPECT_EQ(best_build(), builds_here().back());
}

TEST(Overlap, IsOneByteAtLeast) {
  const uint8_t bytes[8] = {};
  for (size_t a = 0; a < 8; ++a) {
    for (size_t b = 0; b < 8; ++b) {
      const bool expected = a < b + 3 && b < a + 2;
      EXPECT_EQ(overlap({bytes + a, 2}, {bytes + b, 3}), expected) << a << ' ' << b;
    }
  }
}

}  // namespace
}  // namespace zavri::testing
