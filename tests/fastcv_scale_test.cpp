#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <string>

#include "platform/fastcv.h"
#include "tests/support/samples.h"
#include "tests/support/use_build.h"

namespace {

bool g_no_memory = false;

}  // namespace

extern "C" {
int __real_posix_memalign(void**, size_t, size_t);
int __wrap_posix_memalign(void** block, size_t alignment, size_t size) {
  return g_no_memory ? ENOMEM : __real_posix_memalign(block, alignment, size);
}
}

namespace zavri::testing {
namespace {

enum class Way { kNearest, kLinear, kSpline };
constexpr Way kWays[] = {Way::kNearest, Way::kLinear, Way::kSpline};

struct Size {
  uint32_t width, height;
};

std::ostream& operator<<(std::ostream& out, Size size) {
  return out << size.width << 'x' << size.height;
}

// This plane ends with its last row's last pixel: the address sanitizer sees a step further.
struct TestPlane {
  Size size;
  uint32_t stride;
  std::vector<uint8_t> bytes;

  TestPlane(Size s, uint32_t padding, std::vector<uint8_t> content = {})
      : size(s), stride(s.width + padding), bytes(std::move(content)) {
    bytes.resize(size_t{stride} * (size.height - 1) + size.width, kUntouched);
  }

  static constexpr uint8_t kUntouched = 0xee;

  uint8_t at(size_t x, size_t y) const { return bytes[y * stride + x]; }
  bool padding_is_untouched() const {
    for (size_t i = 0; i < bytes.size(); ++i) {
      if (i % stride >= size.width && bytes[i] != kUntouched) return false;
    }
    return true;
  }
};

int scale(Way way, const TestPlane& from, TestPlane& to) {
  const auto [w, h] = from.size;
  const auto [dw, dh] = to.size;
  if (way == Way::kSpline) {
    return fcvScaleUpPolyu8(from.bytes.data(), w, h, from.stride, to.bytes.data(), dw, dh,
                            to.stride);
  }
  return fcvScaleu8(from.bytes.data(), w, h, from.stride, to.bytes.data(), dw, dh, to.stride,
                    way == Way::kLinear ? kInterpolateBilinear : kInterpolateNearest);
}

TestPlane random_plane(Random& random, Size size, Style style = Style::kUniform) {
  const auto padding = static_cast<uint32_t>(random() % 4);
  return {size, padding, samples(random, style, (size.width + padding) * size.height)};
}

Size random_size(Random& random, int most) {
  return {static_cast<uint32_t>(pick(random, 1, most)),
          static_cast<uint32_t>(pick(random, 1, most))};
}

// Tries every length up to three vectors, in and out of the reach of the vector forms; exactly
// twice the size has kernels of its own, other ratios of powers of two take the short sums.
TEST(FastcvScale, EveryBuildEqualsThePlainRule) {
  Random random(1);
  for (uint32_t width = 1; width <= 3 * 32 + 1; ++width) {
    for (int round = 0; round < 12; ++round) {
      Size from = {width, static_cast<uint32_t>(pick(random, 1, 12))};
      Size to = random_size(random, 3 * 32 + 1);
      if (round % 3 == 1) to = {from.width << random() % 4, from.height << random() % 4};
      if (round % 3 == 2) std::swap(from.width, to.width);
      if (round % 5 == 0) to = {2 * from.width, 2 * from.height};
      const TestPlane source = random_plane(random, from, kStyles[round % 4]);
      for (const Way way : kWays) {
        TestPlane expected(to, 3);
        for (const Build build : builds_here()) {
          const UseBuild use(build);
          TestPlane actual(to, 3);
          ASSERT_EQ(scale(way, source, actual), 0);
          ASSERT_TRUE(actual.padding_is_untouched());
          if (build == Build::kPlain) expected = actual;
          ASSERT_EQ(actual.bytes, expected.bytes) << build_name(build) << ' ' << from << " to "
                                                  << to << " way " << static_cast<int>(way);
        }
      }
    }
  }
}

double sample(const TestPlane& plane, int64_t x, int64_t y) {
  return plane.at(std::clamp<int64_t>(x, 0, plane.size.width - 1),
                  std::clamp<int64_t>(y, 0, plane.size.height - 1));
}

double weight(Way way, double distance) {
  const double d = std::abs(distance);
  if (way == Way::kLinear) return std::max(0.0, 1 - d);
  if (d < 1) return 1 - 2.5 * d * d + 1.5 * d * d * d;
  return d < 2 ? 2 - 4 * d + 2.5 * d * d - 0.5 * d * d * d : 0;
}

// Computes the definition in floating point: a convolution at the centre of each pixel.
double model(Way way, const TestPlane& from, Size to, uint32_t x, uint32_t y) {
  const double px = (x + 0.5) * from.size.width / to.width - 0.5;
  const double py = (y + 0.5) * from.size.height / to.height - 0.5;
  const auto left = static_cast<int64_t>(std::floor(px)) - 1;
  const auto top = static_cast<int64_t>(std::floor(py)) - 1;
  double sum = 0;
  for (int64_t j = top; j < top + 4; ++j) {
    for (int64_t i = left; i < left + 4; ++i) {
      sum += weight(way, px - static_cast<double>(i)) * weight(way, py - static_cast<double>(j)) *
             sample(from, i, j);
    }
  }
  return std::clamp(std::round(sum), 0.0, 255.0);
}

TestPlane ramp(Size size) {
  TestPlane plane(size, 0);
  for (uint32_t i = 0; i < plane.bytes.size(); ++i) {
    plane.bytes[i] = static_cast<uint8_t>(3 * (i % size.width) + 2 * (i / size.width));
  }
  return plane;
}

// Ramps are among the planes; the model keeps them away from the edges.
TEST(FastcvScale, StaysCloseToTheModel) {
  Random random(2);
  for (int round = 0; round < 160; ++round) {
    const Size from = random_size(random, 40);
    const TestPlane source =
        round % 5 == 4 ? ramp(from) : random_plane(random, from, kStyles[round % 4]);
    const Size to = random_size(random, 90);
    for (const Way way : {Way::kLinear, Way::kSpline}) {
      TestPlane result(to, 0);
      ASSERT_EQ(scale(way, source, result), 0);
      for (uint32_t y = 0; y < to.height; ++y) {
        for (uint32_t x = 0; x < to.width; ++x) {
          ASSERT_NEAR(result.at(x, y), model(way, source, to, x, y), 1)
              << source.size << " to " << to << " way " << static_cast<int>(way) << " at " << x
              << ',' << y;
        }
      }
    }
  }
}

TEST(FastcvScale, NearestTakesThePixelThatContainsTheCentre) {
  Random random(3);
  for (int round = 0; round < 200; ++round) {
    const TestPlane source = random_plane(random, random_size(random, 50));
    const bool equal = round % 10 == 9;  // then all ways copy
    TestPlane result(equal ? source.size : random_size(random, 50), 1);
    if (equal) {
      for (const Way way : {Way::kLinear, Way::kSpline}) {
        TestPlane copy(source.size, 1);
        ASSERT_EQ(scale(way, source, copy), 0);
        ASSERT_EQ(scale(Way::kNearest, source, result), 0);
        ASSERT_EQ(copy.bytes, result.bytes);
      }
    }
    ASSERT_EQ(scale(Way::kNearest, source, result), 0);
    for (uint32_t y = 0; y < result.size.height; ++y) {
      for (uint32_t x = 0; x < result.size.width; ++x) {
        const uint32_t sx = (2 * x + 1) * source.size.width / (2 * result.size.width);
        const uint32_t sy = (2 * y + 1) * source.size.height / (2 * result.size.height);
        ASSERT_EQ(result.at(x, y), source.at(sx, sy)) << source.size << " to " << result.size;
      }
    }
  }
}

TEST(FastcvScale, ConstantStaysConstant) {
  Random random(4);
  for (int round = 0; round < 200; ++round) {
    const Size from = random_size(random, 40);
    const auto level = static_cast<uint8_t>(round % 2 ? random() : random() % 2 * 255);
    const TestPlane source(from, 0, std::vector<uint8_t>(from.width * from.height, level));
    for (const Way way : kWays) {
      TestPlane result(random_size(random, 100), 0);
      ASSERT_EQ(scale(way, source, result), 0);
      EXPECT_EQ(result.bytes, std::vector<uint8_t>(result.bytes.size(), level)) << from;
    }
  }
}

// At 256 and 512 columns all weights lie half way between two of 1/256.
TEST(FastcvScale, MirroredPictureGivesTheMirroredResult) {
  Random random(6);
  for (const uint32_t width : {67, 200, 256, 512}) {
    const TestPlane source = random_plane(random, {67, 3});
    TestPlane mirrored = source;
    for (uint32_t i = 0; i < 67 * 3; ++i) {
      mirrored.bytes[i / 67 * source.stride + i % 67] = source.at(66 - i % 67, i / 67);
    }
    TestPlane result({width, 5}, 0);
    TestPlane of_mirrored({width, 5}, 0);
    ASSERT_EQ(scale(Way::kLinear, source, result), 0);
    ASSERT_EQ(scale(Way::kLinear, mirrored, of_mirrored), 0);
    for (uint32_t i = 0; i < width * 5; ++i) {
      ASSERT_EQ(result.at(i % width, i / width), of_mirrored.at(width - 1 - i % width, i / width));
    }
  }
}

TEST(FastcvScale, WritesNothingWhereThereIsNothingToDo) {
  const std::vector<uint8_t> source(16, 1);
  std::vector<uint8_t> target(64, 9);
  struct Case {
    uint32_t sizes[4];
    int interpolation;
    bool no_memory;
    bool succeeds;
  };
  for (const Case& c :
       {Case{{0, 4, 8, 8}, 1, false, true}, Case{{4, 0, 8, 8}, 1, false, true},
        Case{{4, 4, 0, 8}, 1, false, true}, Case{{4, 4, 8, 0}, 1, false, true},
        Case{{4, 4, 8, 8}, kInterpolateArea, false, false}, Case{{4, 4, 8, 8}, 3, false, false},
        Case{{4, 4, 8, 8}, 1, true, false}, Case{{4, 4, 0x80000000, 8}, 1, false, false}}) {
    g_no_memory = c.no_memory;
    const auto [w, h, dw, dh] = c.sizes;
    const int status =
        fcvScaleu8(source.data(), w, h, 4, target.data(), dw, dh, 8, c.interpolation);
    g_no_memory = false;
    EXPECT_EQ(status == 0, c.succeeds) << w << 'x' << h << " to " << dw << 'x' << dh;
    EXPECT_EQ(target, std::vector<uint8_t>(64, 9));
  }
}

}  // namespace
}  // namespace zavri::testing
