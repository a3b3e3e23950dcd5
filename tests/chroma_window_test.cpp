#include "uvdenoise/chroma_window.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/quotients.h"
#include "tests/support/samples.h"
#include "tests/support/use_build.h"

namespace zavri::testing {
namespace {

// A plane with room on all sides for whatever a pass reaches.
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

// A border, the middle and a border of a line of `length` samples, for a window of r samples on
// either side and borders of `border` samples.
Pass pass_of(ptrdiff_t length, int r, int border) {
  const auto count = static_cast<uint32_t>(r);
  const auto middle = static_cast<uint32_t>(std::max<ptrdiff_t>(length - 2 * r, 0));
  return {{{0, count, {0, border}},
           {r, middle, {r, r}},
           {static_cast<ptrdiff_t>(middle), count, {border - 1, 0}}}};
}

enum class Table { kFalling, kFlat, kRandom, kHeaviest, kNegative };
constexpr Table kTables[] = {Table::kFalling, Table::kFlat, Table::kRandom, Table::kHeaviest,
                             Table::kNegative};

Weights weights_of(Random& random, Table table, int threshold) {
  Weights weights{};
  weights.threshold = threshold;
  const int level = pick(random, 0, 127);
  for (int d = 0; d < threshold; ++d) {
    int weight = level;
    if (table == Table::kFalling) weight = std::max(0, level - d * level / threshold);
    if (table == Table::kRandom) weight = pick(random, 0, pick(random, 0, 127));
    if (table == Table::kHeaviest) weight = 127;
    // With the centre's 64, multiples of 3 never add up to zero.
    if (table == Table::kNegative) weight = 3 * pick(random, -42, 42);
    weights.of[d] = static_cast<int8_t>(weight);
  }
  return weights;
}

// Runs one pass in every build; all must leave the bytes that the plain rule leaves.
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

void expect_same_passes(const Plane& plane, const Weights& weights, int r, int border) {
  const Pass rows = pass_of(plane.grid.columns, r, border);
  const Pass columns = pass_of(plane.grid.rows, r, 2 * r);
  SCOPED_TRACE(::testing::Message() << "reach " << r << " border " << border);
  expect_same(plane, [&](auto& kernels, auto grid) { kernels.weighted_rows(grid, rows, weights); });
  expect_same(plane,
              [&](auto& kernels, auto grid) { kernels.weighted_columns(grid, columns, weights); });
  const Pass tolerant_rows = {{rows.spans[1]}};
  const Pass tolerant_columns = {{columns.spans[1]}};
  if (r != 5) return;
  expect_same(plane, [&](auto& kernels, auto grid) { kernels.tolerant_rows(grid, tolerant_rows); });
  expect_same(plane,
              [&](auto& kernels, auto grid) { kernels.tolerant_columns(grid, tolerant_columns); });
}

constexpr int kReaches[] = {3, 5, 7, 9};
int border_of(int reach) { return reach == 3 ? 10 : 15; }

TEST(ChromaWindow, EveryBuildEqualsThePlainRule) {
  Random random(1);
  for (int threshold = -128; threshold <= 127; threshold += threshold < 0 ? 32 : 1) {
    for (const Table table : kTables) {
      const int reach = kReaches[random() % 4];
      const auto columns = static_cast<uint32_t>(pick(random, 32, 110));
      const Plane plane(random, kStyles[random() % 4], random() % 72, columns,
                        columns * kColumnStep + random() % 10);
      SCOPED_TRACE(::testing::Message()
                   << "threshold " << threshold << " table " << static_cast<int>(table));
      expect_same_passes(plane, weights_of(random, table, threshold), reach, border_of(reach));
    }
  }
}

TEST(ChromaWindow, LinesLongerThanOneChunk) {
  Random random(2);
  for (const int reach : kReaches) {
    for (const auto& [rows, columns] : {std::pair{3u, 300u}, {34u, 389u}, {290u, 35u}}) {
      const Plane plane(random, Style::kNearEqual, rows, columns, columns * kColumnStep);
      expect_same_passes(plane, weights_of(random, Table::kFalling, 20), reach, border_of(reach));
    }
  }
}

// Row steps below a row's length, and rows too short for their windows, let lines touch each other:
// they must then be filtered one after the other.
TEST(ChromaWindow, TouchingLinesFollowTheOrderOfTheRule) {
  Random random(3);
  for (int round = 0; round < 800; ++round) {
    const bool short_rows = round % 2 == 0;
    const auto columns = static_cast<uint32_t>(pick(random, 18, short_rows ? 34 : 60));
    const int length = static_cast<int>(columns * kColumnStep);
    const int row_step = short_rows ? length : 2 * pick(random, 0, length / 2 + 4);
    const Plane plane(random, kStyles[random() % 4], 40, columns, row_step);
    const int reach = kReaches[random() % 4];
    expect_same_passes(plane, weights_of(random, Table::kFalling, 30), reach, border_of(reach));
  }
}

// The sums' range: a single weight w at distance d, as heavy as the vector form takes it and one
// heavier, on lines that are nothing but steps of d up and down.
TEST(ChromaWindow, HeaviestWeightsStayWithinTheSums) {
  Random random(4);
  constexpr int kBorder = 15;
  for (int d = 1; d < 127; ++d) {
    int heaviest = 127;
    while (kBorder * d * heaviest + (64 + kBorder * heaviest) / 2 > INT16_MAX) --heaviest;
    for (int weight = heaviest; weight <= std::min(heaviest + 1, 127); ++weight) {
      Plane plane(random, Style::kUniform, 40, 40, 160);
      const auto low = static_cast<uint8_t>(random() % (256 - static_cast<unsigned>(d)));
      for (uint8_t& byte : plane.bytes) {
        byte = static_cast<uint8_t>(low + (byte % 16 == 0 ? d : 0));
        if (d % 2 == 1) byte = static_cast<uint8_t>(2 * low + d - byte);
      }
      Weights weights{};
      weights.threshold = d + 1;
      weights.of[d] = static_cast<int8_t>(weight);
      for (const int reach : kReaches) expect_same_passes(plane, weights, reach, kBorder);
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
