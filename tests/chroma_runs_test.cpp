#include "denoise3d/chroma_runs.h"

#include <gtest/gtest.h>

#include "tests/support/samples.h"
#include "tests/support/use_build.h"

namespace zavri::testing {
namespace {

using Bytes = std::vector<uint8_t>;

// `call` in every build must leave the bytes that the plain rule leaves.
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

// Stretches of `length` equal pairs, each byte then moved by up to `noise`.
Bytes runs(Random& random, size_t size, int length, int noise) {
  Bytes bytes(size);
  int level[2] = {};
  for (size_t i = 0; i < size; ++i) {
    if (i % 2 == 0 && pick(random, 1, length) == 1) {
      for (int& value : level) value = pick(random, noise, 255 - noise);
    }
    bytes[i] = static_cast<uint8_t>(level[i % 2] + pick(random, -noise, noise));
  }
  return bytes;
}

TEST(ChromaRuns, SequenceEqualsThePlainRuleInEveryBuild) {
  Random random(3);
  for (size_t bytes = 3; bytes < 400; ++bytes) {
    SCOPED_TRACE(bytes);
    // Runs of a few pairs, of some vectors, and one of everything; noise around half the tolerance
    // breaks runs at every lane.
    for (const int length : {2, 5, 40, 100000}) {
      for (const int noise : {0, 3, 11}) {
        expect_same(runs(random, bytes + 64, length, noise),
                    [bytes](const ChromaRunKernels& kernels, Bytes& plane) {
                      kernels.smooth_sequence(plane.data() + 8, bytes);
                    });
      }
    }
    expect_same(samples(random, kStyles[bytes % 4], bytes + 64),
                [bytes](const ChromaRunKernels& kernels, Bytes& plane) {
                  kernels.smooth_sequence(plane.data() + 7, bytes);
                });
  }
}

TEST(ChromaRuns, ColumnsEqualThePlainRuleInEveryBuild) {
  Random random(4);
  for (int round = 0; round < 1500; ++round) {
    const auto width = static_cast<size_t>(pick(random, 0, 110));
    const auto rows = static_cast<size_t>(pick(random, 2, 30));
    // Strides below the width, and below a vector, lead columns into one another.
    const auto stride = static_cast<size_t>(pick(random, 1, 130));
    SCOPED_TRACE(::testing::Message() << width << 'x' << rows << " stride " << stride);
    const size_t size = rows * stride + width + 64;
    const Bytes plane = round % 2 ? runs(random, size, pick(random, 1, 300), pick(random, 0, 12))
                                  : samples(random, kStyles[random() % 4], size);
    expect_same(plane, [=](const ChromaRunKernels& kernels, Bytes& bytes) {
      kernels.smooth_columns(bytes.data() + 5, width, rows, stride);
    });
  }
}

// A single run as long as the plane: the mean of every run length, with the sums at both ends of
// what the tolerance lets through.
TEST(ChromaRuns, MeansAreExactForEveryRunLength) {
  constexpr size_t kColumns = 16;  // pairs; one vector of 32 bytes
  constexpr size_t kTallest = 1700;
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
