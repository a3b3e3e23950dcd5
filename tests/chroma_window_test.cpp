#include "uvdenoise/chroma_window.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/quotients.h"
#include "tests/support/samples.h"
#include "tests/support/use_build.h"

namespace zavri::testing {
namespace {

// This plane has room on all sides for whatever a pass reaches.
struct Plane {
  std::vector<uint8_t> bytes;
  size_t start;
  Grid grid;

  Plane(Random& random, Style style, uint32_t rows, uint32_t columns, ptrdiff_t row_step)
      : bytes(samples(random, style,
                      kMargin * 2 + (rows + 2 * kRowsAround) * static_cast<size_t>(row_step) +
                          columns * static_cast<size_t>(kColumnStep))),
        start(kMargin + kRowsAround * static_cast<size_t>(row_step)),
        grid{nullptr, rows, columns, row_step} {}

  Grid grid_of(std::vector<uint8_t>& copy) const {
    Grid result = grid;
    result.start = copy.data() + start;
    return result;
  }

  static constexpr size_t kMargin = 160;
  static constexpr size_t kRowsAround = 30;
};

std::ostream& operator<<(std::ostream& out, const Plane& plane) {
  return out << plane.grid.rows << " rows of " << plane.grid.columns << " columns, "
             << plane.grid.row_step << " bytes apart";
}

// Runs one pass in every build, which must leave the bytes that the plain rule leaves.
template <class Run>
void expect_same(const Plane& plane, Run run) {
  std::vector<uint8_t> expected = plane.bytes;
  run(chroma_window_kernels(Build::kPlain), plane.grid_of(expected));
  for (const Build build : builds_here()) {
    std::vector<uint8_t> actual = plane.bytes;
    run(chroma_window_kernels(build), plane.grid_of(actual));
    ASSERT_TRUE(actual == expected) << build_name(build) << ": " << plane;
  }
}

void expect_same_passes(const Plane& plane, const Weights& weights, const Taps& taps) {
  const auto middle = [&](uint32_t length) {
    return std::max(length, 2u * static_cast<uint32_t>(taps.reach)) - 2u * taps.reach;
  };
  const Pass rows = row_pass(taps, middle(plane.grid.columns));
  const Pass columns = column_pass(taps, middle(plane.grid.rows));
  SCOPED_TRACE(::testing::Message() << "reach " << taps.reach);
  expect_same(plane, [&](auto& kernels, auto grid) { kernels.weighted_rows(grid, rows, weights); });
  expect_same(plane,
              [&](auto& kernels, auto grid) { kernels.weighted_columns(grid, columns, weights); });
  if (taps.reach != 5) return;
  expect_same(plane,
              [&](auto& kernels, auto grid) { kernels.tolerant_rows(grid, {{rows.spans[1]}}); });
  expect_same(plane, [&](auto& kernels, auto grid) {
    kernels.tolerant_columns(grid, {{columns.spans[1]}});
  });
}

constexpr Taps kAllTaps[] = {kTaps7, kTaps11, kTaps15, kTaps19};

// With a row step below a row's length lines touch each other, and must be filtered one after the
// other.
TEST(ChromaWindow, TouchingLinesFollowTheOrderOfTheRule) {
  Random random(3);
  Weights weights{};
  weights.threshold = 30;
  for (int d = 0; d < weights.threshold; ++d) weights.of[d] = static_cast<int8_t>(90 - 3 * d);
  for (int round = 0; round < 400; ++round) {
    const auto columns = static_cast<uint32_t>(pick(random, 32, 60));
    const int row_step = 2 * pick(random, 0, 2 * static_cast<int>(columns) + 4);
    const Plane plane(random, kStyles[random() % 4], 40, columns, row_step);
    expect_same_passes(plane, weights, kAllTaps[round % 4]);
  }
}

// A single weight at distance d is as heavy as the vector form takes it, and then one heavier, on
// lines that are nothing but steps of d up and down: the sums reach the end of their range.
TEST(ChromaWindow, HeaviestWeightsStayWithinTheSums) {
  Random random(4);
  for (const Taps& taps : kAllTaps) {
    const int neighbours = std::max(2 * taps.reach, taps.left_border);
    for (int d = 1; d < 127; d += ZAVRI_EXHAUSTIVE ? 1 : 5) {
      int heaviest = 127;
      while (neighbours * d * heaviest + (64 + neighbours * heaviest) / 2 > INT16_MAX) --heaviest;
      Plane plane(random, Style::kUniform, 40, 40, 160);
      const auto low = static_cast<uint8_t>(random() % (256 - static_cast<unsigned>(d)));
      for (uint8_t& byte : plane.bytes) {
        byte = static_cast<uint8_t>(low + (byte % 16 == 0 ? d : 0));
        if (d % 2 == 1) byte = static_cast<uint8_t>(2 * low + d - byte);
      }
      Weights weights{};
      weights.threshold = d + 1;
      for (int weight = heaviest; weight <= std::min(heaviest + 1, 127); ++weight) {
        weights.of[d] = static_cast<int8_t>(weight);
        expect_same_passes(plane, weights, taps);
      }
    }
  }
}

TEST(ChromaWindow, QuotientsAreExact) {
  uint64_t checked = 0;
  for (const Build build : builds_here()) {
    const QuotientCheck check = check_quotients(build);
    EXPECT_EQ(check.wrong, 0u) << build_name(build) << " of " << check.checked;
    checked += check.checked;
  }
  if (checked == 0) GTEST_SKIP() << "all windows take the plain rule";
}

}  // namespace
}  // namespace zavri::testing
