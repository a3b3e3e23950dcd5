#include "denoise3d/merge.h"

#include <gtest/gtest.h>

#include <numeric>

#include "tests/support/samples.h"
#include "tests/support/use_build.h"

namespace zavri::testing {
namespace {

constexpr MergeKind kKinds[] = {MergeKind::kWhole, MergeKind::kChroma, MergeKind::kEdges,
                                MergeKind::kEdgesLuma};
constexpr size_t kLongestRow = 3 * 32 + 2;

// Limits in pairs, as the edge sections have them.
std::vector<uint8_t> random_ramp(Random& random) {
  std::vector<uint8_t> ramp = samples(random, Style::kUniform, kLongestRow);
  for (size_t b = 0; b < ramp.size(); b += 2) ramp[b + 1] = ramp[b];
  return ramp;
}

// Nine rows in one buffer, so that a write outside a row is seen whatever it hits.
struct Rows {
  std::vector<uint8_t> bytes;
  size_t at[9];  // uv, y0, y1, three other_uv, three other_y

  MergeRow row() {
    MergeRow row{};
    row.uv = bytes.data() + at[0];
    row.y0 = bytes.data() + at[1];
    row.y1 = bytes.data() + at[2];
    for (int k = 0; k < 3; ++k) {
      row.other_uv[k] = bytes.data() + at[3 + k];
      row.other_y[k] = bytes.data() + at[6 + k];
    }
    return row;
  }
};

struct Limits {
  int chroma;
  int luma;
};
constexpr Limits kLimits[] = {{0, 0}, {1, 255}, {8, 3}, {40, 8}, {254, 100}, {255, 255}};

// Runs one call in every build; all must leave the bytes that the plain rule leaves.
void expect_same(const Rows& rows, MergeKind kind, int others, size_t bytes,
                 const MergeLimits& limits) {
  Rows expected = rows;
  merge_kernels(Build::kPlain).get(kind, others)(expected.row(), bytes, limits);
  for (const Build build : builds_here()) {
    Rows actual = rows;
    merge_kernels(build).get(kind, others)(actual.row(), bytes, limits);
    ASSERT_TRUE(actual.bytes == expected.bytes)
        << build_name(build) << " kind " << static_cast<int>(kind) << " others " << others
        << " bytes " << bytes << " limits " << +limits.chroma << ' ' << +limits.luma;
  }
}

TEST(Merge, EveryBuildEqualsThePlainRule) {
  Random random(1);
  for (size_t bytes = 0; bytes <= kLongestRow; bytes += 2) {
    for (const Style style : kStyles) {
      const Limits limit = kLimits[random() % std::size(kLimits)];
      const std::vector<uint8_t> ramp = random_ramp(random);
      Rows rows{samples(random, style, 9 * (kLongestRow + 40)), {}};
      for (size_t i = 0; i < 9; ++i) rows.at[i] = i * (kLongestRow + 40) + random() % 40;
      for (const MergeKind kind : kKinds) {
        for (int others = 1; others <= 3; ++others) {
          expect_same(
              rows, kind, others, bytes,
              {static_cast<uint8_t>(limit.chroma), static_cast<uint8_t>(limit.luma), ramp.data()});
        }
      }
    }
  }
}

// Strides, drifting sections and a luma plane that runs into the chroma plane make rows overlap in
// every way; positions must then be worked one after the other.
TEST(Merge, OverlappingRowsFollowTheOrderOfPositions) {
  Random random(2);
  const std::vector<uint8_t> ramp = random_ramp(random);
  for (int round = 0; round < 4000; ++round) {
    Rows rows{samples(random, round % 2 ? Style::kNearEqual : Style::kUniform, 400), {}};
    for (size_t& at : rows.at) at = random() % 300;
    // Often exactly equal, as for a frame that is given twice.
    for (int i = 0; i < 3; ++i) {
      if (random() % 2) rows.at[random() % 9] = rows.at[random() % 9];
    }
    expect_same(rows, kKinds[random() % 4], 1 + static_cast<int>(random() % 3),
                random() % (kLongestRow / 2) * 2, {60, 255, ramp.data()});
  }
}

#if defined(__x86_64__) && defined(NDEBUG) && !defined(__SANITIZE_ADDRESS__) && \
    !defined(__SANITIZE_THREAD__)
constexpr int kValueStep = 1;
#else
constexpr int kValueStep = 51;  // both ends and a few between, at a pace that an emulator keeps
#endif

int rule_mean(int sum, int reference, int count) {
  if (count == 2) return (sum + 1) / 2;
  return count == 3 ? (sum + reference + 2) / 4 : (sum + 1) / 4;
}

// With the widest limit all frames agree: every combination of a reference byte r, a byte a, and
// all pairs of values of two more frames.
TEST(Merge, MeanOfAllFramesIsExactForEverySampleValue) {
  constexpr size_t kPairs = 256 * 256;
  using Row = std::vector<uint8_t>;
  Row b_row(kPairs);
  Row c_row(kPairs);
  for (size_t i = 0; i < kPairs; ++i) {
    b_row[i] = static_cast<uint8_t>(i);
    c_row[i] = static_cast<uint8_t>(i >> 8);
  }
  // expected[s] holds (s + b + c) >> 2.
  std::vector<Row> expected(2 * 255 + 2 + 1, Row(kPairs));
  for (size_t sum = 0; sum < expected.size(); ++sum) {
    for (size_t i = 0; i < kPairs; ++i) {
      expected[sum][i] = static_cast<uint8_t>((sum + b_row[i] + c_row[i]) >> 2);
    }
  }
  Row reference(kPairs);
  Row a_row(kPairs);
  for (const Build build : builds_here()) {
    if (build == Build::kPlain) continue;
    for (int others = 2; others <= 3; ++others) {
      const MergeFunction merge = merge_kernels(build).get(MergeKind::kChroma, others);
      for (int r = 0; r < 256; r += kValueStep) {
        for (int a = 0; a < (others == 3 ? 256 : 1); a += kValueStep) {
          std::fill(reference.begin(), reference.end(), static_cast<uint8_t>(r));
          std::fill(a_row.begin(), a_row.end(), static_cast<uint8_t>(a));
          MergeRow row{};
          row.uv = reference.data();
          row.other_uv[0] = b_row.data();
          row.other_uv[1] = c_row.data();
          row.other_uv[2] = a_row.data();
          merge(row, kPairs, {255, 0, nullptr});
          const auto sum = static_cast<size_t>(others == 3 ? r + a + 1 : 2 * r + 2);
          ASSERT_TRUE(reference == expected[sum])
              << build_name(build) << " others " << others << " r " << r << " a " << a;
        }
      }
    }
  }
}

// The chroma pairs of the other frames, equal to the reference's or far from it, say which of them
// agree; the luma then runs through the values.
TEST(Merge, MeanOfSomeFramesIsExactForEverySetOfThem) {
  constexpr size_t kPairs = 256 * 256;
  std::vector<uint8_t> rows[9];
  for (auto& row : rows) row.assign(2 * kPairs, 0);
  for (const Build build : builds_here()) {
    const MergeFunction merge = merge_kernels(build).get(MergeKind::kWhole, 3);
    for (int agreeing = 0; agreeing < 8; ++agreeing) {
      for (int k = 0; k < 3; ++k) {
        std::fill(rows[3 + k].begin(), rows[3 + k].end(), agreeing >> k & 1 ? 0 : 255);
      }
      for (int r = 0; r < 256; r += kValueStep == 1 ? 5 : kValueStep) {
        std::fill(rows[1].begin(), rows[1].end(), static_cast<uint8_t>(r));
        // The frames that agree first and last run through all pairs of values.
        const int first = agreeing & 1 ? 0 : 1;
        for (size_t i = 0; i < kPairs; ++i) {
          for (int k = 0; k < 3; ++k) {
            rows[6 + k][2 * i] = static_cast<uint8_t>(k == first ? i : i >> 8);
          }
        }
        const MergeRow row = {rows[0].data(),
                              rows[1].data(),
                              rows[2].data(),
                              {rows[3].data(), rows[4].data(), rows[5].data()},
                              {rows[6].data(), rows[7].data(), rows[8].data()}};
        merge(row, 2 * kPairs, {0, 255, nullptr});
        unsigned wrong = 0;
        for (size_t i = 0; i < kPairs; ++i) {
          int sum = r;
          int count = 1;
          for (int k = 0; k < 3; ++k) {
            if (agreeing >> k & 1) sum += rows[6 + k][2 * i], ++count;
          }
          const int expected = count == 1 ? r : rule_mean(sum, r, count);
          for (const int byte : {0, 1}) {
            wrong += rows[1][2 * i + byte] != expected;
            wrong += agreeing != 0 && rows[2][2 * i + byte] != expected;
          }
        }
        ASSERT_EQ(wrong, 0u) << build_name(build) << " agreeing " << agreeing << " r " << r;
      }
    }
  }
}

}  // namespace
}  // namespace zavri::testing
