#include <gtest/gtest.h>

#include <algorithm>

#include "include/zavricustpro.h"
#include "tests/support/naive_uv_denoise.h"
#include "tests/support/samples.h"
#include "tests/support/use_build.h"
#include "uvdenoise/fill_grid.h"

namespace zavri::testing {
namespace {

struct Kernel {
  ThreadPoolTaskFunc function;
  int taps;
};
constexpr Kernel kKernels[] = {{zavri_mp_single_UV_denoise_new_inner_7, 7},
                               {zavri_mp_single_UV_denoise_new_inner_11, 11},
                               {zavri_mp_single_UV_denoise_new_inner_15, 15},
                               {zavri_mp_single_UV_denoise_new_inner_19, 19}};

constexpr size_t kRowsAround = 90;

enum class Table { kFalling, kFlat, kRandom, kHeaviest, kNegative };
constexpr Table kTables[] = {Table::kFalling, Table::kFlat, Table::kRandom, Table::kHeaviest,
                             Table::kNegative};

void fill_table(Random& random, Table table, T_UVDenoiseParam& param) {
  const int level = pick(random, 0, pick(random, 0, 127));
  for (int d = 0; d < 127; ++d) {
    int weight = level;
    if (table == Table::kFalling)
      weight = std::max(0, level - d * level / std::max<int>(param.threshold, 1));
    if (table == Table::kRandom) weight = pick(random, 0, level);
    if (table == Table::kHeaviest) weight = 127;
    // With the centre's 64, multiples of 3 never add up to zero.
    if (table == Table::kNegative) weight = 3 * pick(random, -42, 42);
    param.weight_table[d] = static_cast<int8_t>(weight);
  }
}

// This plane lies in a buffer that has room for what the strips of small planes touch around them.
struct Job {
  T_UVDenoiseParam param{};
  std::vector<uint8_t> bytes;

  Job(Random& random, Style style, uint32_t width, uint32_t height, uint32_t stride)
      : bytes(samples(random, style, (height + 2 * kRowsAround) * stride)) {
    param.width = width;
    param.height = height;
    param.stride = stride;
    param.threshold = 20;
    fill_table(random, Table::kFalling, param);
  }

  template <class Run>
  std::vector<uint8_t> after(Run run) const {
    std::vector<uint8_t> result = bytes;
    T_UVDenoiseParam copy = param;
    copy.uv_plane = result.data() + kRowsAround * param.stride;
    run(copy);
    return result;
  }

  std::vector<uint8_t> after(ThreadPoolTaskFunc function, uint32_t strip) const {
    return after([&](const auto& p) { function(&strip, &p, nullptr); });
  }
};

// Any strip number above 2 means the last strip, but that begins where the number says.
uint32_t random_strip(Random& random) { return random() % 8 == 0 ? 4 : random() % 4; }

// The heights begin at the smallest that the last strip's borders admit, whose windows lead out of
// the plane. Some widths are so large that lines are filtered in parts.
uint32_t random_height(Random& random, int reach) {
  const int large = random() % 32 == 0 ? 1300 : 0;
  for (;;) {
    const int height = pick(random, 16 * reach - 9, 30 * reach + large);
    if ((height - 3 * (height / 4)) / 2 >= 2 * reach) return static_cast<uint32_t>(height);
  }
}
uint32_t random_width(Random& random, int taps) {
  const int columns = taps == 7 ? 15 : taps + 13;
  return static_cast<uint32_t>(4 * columns + pick(random, 0, random() % 32 == 0 ? 1500 : 200));
}

TEST(UvDenoise, StripsEqualTheNaiveModelInEveryBuild) {
  Random random(1);
  for (int round = 0; round < (ZAVRI_EXHAUSTIVE ? 400 : 100); ++round) {
    const auto& [function, taps] = kKernels[round % 4];
    const int reach = std::max((taps - 1) / 2, 5);  // 5 is the fixed tolerance's
    const uint32_t width = random_width(random, taps);
    const uint32_t height = random_height(random, reach);
    // Samples are found with the low 15 bits of the stride.
    const uint32_t stride = width + random() % 20 + (round == 0 ? 0x8000 : 0);
    Job job(random, kStyles[random() % 4], width, height, stride);
    job.param.threshold = static_cast<int8_t>(pick(random, -128, 127) >> random() % 4);
    const Table table = kTables[random() % 5];
    fill_table(random, table, job.param);
    // There is room for the strip after the last one.
    job.bytes.resize(job.bytes.size() + height * job.param.stride);
    const uint32_t strip = random_strip(random);
    const auto expected =
        job.after([&, t = taps](const auto& p) { naive_uv_denoise_strip(p, strip, t); });
    const auto tolerant = job.after([&](const auto& p) { naive_tolerant_denoise_strip(p, strip); });
    for (const Build build : builds_here()) {
      const UseBuild use(build);
      SCOPED_TRACE(::testing::Message()
                   << build_name(build) << " taps " << taps << " strip " << strip << ": " << width
                   << 'x' << height << " stride " << stride << " threshold "
                   << int{job.param.threshold} << " table " << static_cast<int>(table));
      ASSERT_TRUE(job.after(function, strip) == expected);
      if (taps <= 11) {
        ASSERT_TRUE(job.after(zavri_mp_single_UV_denoise_inner_11, strip) == tolerant);
      }
    }
  }
}

TEST(UvDenoise, FillStepEqualsTheNaiveModelInEveryBuild) {
  Random random(2);
  constexpr size_t kStart = 64;
  for (int width = 0; width <= 120; ++width) {
    for (int rows = 0; rows <= 13; ++rows) {
      // Some rows overlap the next one, and some end where it begins.
      const int stride = rows % 3 == 0 ? width : pick(random, 0, 2 * width);
      const uint32_t strip = random_strip(random);
      const auto bytes = samples(random, Style::kUniform, 2 * kStart + 15u * 2u * 130u);
      auto expected = bytes;
      naive_fill_grid(expected.data() + kStart, width, rows, stride, strip);
      for (const Build build : builds_here()) {
        const UseBuild use(build);
        auto actual = bytes;
        UV_denoise_fill_grid(actual.data() + kStart, static_cast<uint16_t>(width),
                             static_cast<uint16_t>(rows), static_cast<uint16_t>(stride), strip);
        ASSERT_TRUE(actual == expected) << build_name(build) << ": " << width << 'x' << rows
                                        << " stride " << stride << " strip " << strip;
      }
    }
  }
}

TEST(UvDenoise, NothingToDo) {
  Random random(4);
  Job job(random, Style::kUniform, 200, 160, 200);
  const uint32_t strip = 0;
  ThreadPoolTaskFunc functions[] = {zavri_mp_UV_denoise_inner, zavri_mp_single_UV_denoise_inner_11};
  for (const ThreadPoolTaskFunc function : functions) {
    EXPECT_TRUE(job.after([&](const auto& p) { function(nullptr, &p, nullptr); }) == job.bytes);
    function(&strip, nullptr, nullptr);
  }
  for (const Kernel& kernel : kKernels) {
    EXPECT_TRUE(job.after([&](const auto& p) { kernel.function(nullptr, &p, nullptr); }) ==
                job.bytes);
    kernel.function(&strip, nullptr, nullptr);
  }
  EXPECT_EQ(zavri_mp_single_UV_denoise(nullptr), 0u);
  // A size that does not exist is no reason to do nothing.
  EXPECT_TRUE(job.after(zavri_mp_UV_denoise_inner, 0) == job.after(kKernels[1].function, 0));

  // Only the dispatcher knows a threshold of 0; a kernel still fills between the grid's samples.
  job.param.threshold = 0;
  EXPECT_TRUE(job.after(zavri_mp_UV_denoise_inner, 0) == job.bytes);
  const auto filled = job.after([](const auto& p) {
    naive_fill_grid(p.uv_plane, static_cast<int>(p.width), 40, static_cast<int>(p.stride), 0);
  });
  for (const Kernel& kernel : kKernels) EXPECT_TRUE(job.after(kernel.function, 0) == filled);
}

}  // namespace
}  // namespace zavri::testing
