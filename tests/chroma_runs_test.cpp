#include "denoise3d/chroma_runs.h"

#include <gtest/gtest.h>

#include "tests/support/use_build.h"

namespace zavri::testing {
namespace {

using Bytes = std::vector<uint8_t>;

// Runs `call` in every build, which must leave the bytes that the plain rule leaves.
template <class Call>
void expect_same(const Bytes& before, Call call) {
  Bytes expected = before;
  call(chroma_run_kernels(Build::kPlain), expected);
  for (const Build build : builds_here()) {
    Bytes actual = before;
    call(chroma_run_kernels(build), actual);
    ASSERT_TRUE(actual == expected) << build_name(build);
  }
}

// One run is as long as the plane: this tries the mean of every run length, with the sums at both
// ends of what the tolerance lets through.
TEST(ChromaRuns, MeansAreExactForEveryRunLength) {
  constexpr size_t kColumns = 16;  // pairs, which fill one vector of 32 bytes
  constexpr size_t kTallest = 1710;
  for (const int step : {-19, 19, 1}) {
    for (size_t pairs = 2; pairs <= kTallest; pairs += pairs < 300 ? 1 : 23) {
      SCOPED_TRACE(::testing::Message() << "step " << step << " pairs " << pairs);
      const auto value = [&](size_t i, size_t moved) {
        return static_cast<uint8_t>(120 + (i > 0 && i <= moved ? step : 0));
      };
      Bytes sequence(2 * pairs + 64);
      for (size_t i = 0; i < pairs; ++i) {
        sequence[2 * i] = value(i, pairs);
        sequence[2 * i + 1] = value(i, pairs / 2);
      }
      expect_same(sequence, [&](const ChromaRunKernels& kernels, Bytes& bytes) {
        kernels.smooth_sequence(bytes.data(), 2 * pairs);
      });
      Bytes columns(2 * kColumns * pairs);
      for (size_t i = 0; i < pairs; ++i) {
        for (size_t x = 0; x < 2 * kColumns; ++x) {
          columns[i * 2 * kColumns + x] = value(i, pairs * (x + 1) / (2 * kColumns));
        }
      }
      expect_same(columns, [&](const ChromaRunKernels& kernels, Bytes& bytes) {
        kernels.smooth_columns(bytes.data(), 2 * kColumns, pairs, 2 * kColumns);
      });
    }
  }
}

}  // namespace
}  // namespace zavri::testing
