#include "denoise3d/merge.h"

#include <gtest/gtest.h>

#include "tests/support/use_build.h"

namespace zavri::testing {
namespace {

// Under an emulator or a sanitizer the test of every value tries both ends and a few between.
#if defined(__x86_64__) && defined(NDEBUG) && !defined(__SANITIZE_ADDRESS__) && \
    !defined(__SANITIZE_THREAD__)
constexpr int kValueStep = 1;
#else
constexpr int kValueStep = 51;
#endif

// With the widest limit all frames agree. This tries every combination of a reference byte r, a
// byte a, and all pairs of values of two more frames.
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

}  // namespace
}  // namespace zavri::testing
