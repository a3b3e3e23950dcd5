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

// A plane within a buffer that has room for what small planes touch beyond them.
struct Job {
  T_UVDenoiseParam param{};
  std::vector<uint8_t> bytes;

  Job(Random& random, Style style, uint32_t width, uint32_t height, uint32_t stride)
      : bytes(samples(random, style, (height + 2 * kRowsAround) * stride)) {
    param.width = width;
    param.height = height;
    param.stride = stride;
    param.threshold = 20;
    for (int d = 0; d < 127; ++d) {
      param.weight_table[d] = static_cast<int8_t>(std::max(100 - 5 * d, 0));
    }
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

  const uint8_t* row(const std::vector<uint8_t>& result, size_t number) const {
    return result.data() + (kRowsAround + number) * param.stride;
  }
};

// Any strip number above 2 is the last strip's, but begins where the number says.
uint32_t random_strip(Random& random) { return random() % 8 == 0 ? 4 : random() % 4; }

TEST(UvDenoise, StripsEqualTheNaiveModelInEveryBuild) {
  Random random(1);
  for (int round = 0; round < 150; ++round) {
    const auto& [function, taps] = kKernels[round % 4];
    const int reach = std::max((taps - 1) / 2, 5);  // the fixed tolerance's is 5
    const auto width = static_cast<uint32_t>(4 * (taps + 13) + pick(random, 0, 200));
    // Down to planes whose windows lead out of the strip, and out of the plane.
    const auto height = static_cast<uint32_t>(pick(random, 16 * reach, 30 * reach));
    Job job(random, kStyles[random() % 4], width, height, width + random() % 20);
    job.param.threshold = static_cast<int8_t>(pick(random, -3, 127));
    // Room for the strip after the last one.
    job.bytes.resize(job.bytes.size() + height * job.param.stride);
    const uint32_t strip = random_strip(random);
    const auto expected =
        job.after([&, t = taps](const auto& p) { naive_uv_denoise_strip(p, strip, t); });
    const auto tolerant = job.after([&](const auto& p) { naive_tolerant_denoise_strip(p, strip); });
    for (const Build build : builds_here()) {
      const UseBuild use(build);
      SCOPED_TRACE(::testing::Message()
                   << build_name(build) << " taps " << taps << " strip " << strip << ": " << width
                   << 'x' << height << " stride " << job.param.stride);
      ASSERT_TRUE(job.after(function, strip) == expected);
      if (taps <= 11) {
        ASSERT_TRUE(job.after(zavri_mp_single_UV_denoise_inner_11, strip) == tolerant);
      }
    }
  }
}

// The buffer ends with the plane, where a sanitizer watches.
TEST(UvDenoise, PlanesOfTheStatedSizeAreNotLeft) {
  Random random(6);
  for (const auto& [function, taps] : kKernels) {
    const auto rows = static_cast<uint32_t>(4 * 6 * (taps - 1) / 2);
    for (uint32_t rest = 0; rest < 4; ++rest) {
      const uint32_t width = 4 * 32 + 2 * static_cast<uint32_t>(pick(random, 0, 40));
      const Job job(random, Style::kNearEqual, width, rows + rest, width);
      T_UVDenoiseParam param = job.param;
      const auto denoised = [&](const auto& run) {
        std::vector<uint8_t> plane(job.row(job.bytes, 0), job.row(job.bytes, rows + rest));
        param.uv_plane = plane.data();
        for (uint32_t strip = 0; strip < 4; ++strip) run(strip);
        return plane;
      };
      const auto expected =
          denoised([&, t = taps](uint32_t strip) { naive_uv_denoise_strip(param, strip, t); });
      for (const Build build : builds_here()) {
        const UseBuild use(build);
        SCOPED_TRACE(::testing::Message() << build_name(build) << " taps " << taps << ' ' << width
                                          << 'x' << rows + rest);
        const auto run = [&](ThreadPoolTaskFunc task) {
          return denoised([&](uint32_t strip) { task(&strip, &param, nullptr); });
        };
        EXPECT_TRUE(run(function) == expected);
        // That its bytes are right is shown elsewhere.
        if (taps == 11) run(zavri_mp_single_UV_denoise_inner_11);
      }
    }
  }
}

TEST(UvDenoise, FillStepEqualsTheNaiveModelInEveryBuild) {
  Random random(2);
  constexpr size_t kStart = 64;
  for (int width = 0; width <= 120; ++width) {
    for (int rows = 0; rows <= 13; ++rows) {
      // Also rows that overlap the next one, and those that end where it begins.
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

TEST(UvDenoise, DispatchPicksTheKernelBySize) {
  Random random(3);
  Job job(random, Style::kNearEqual, 200, 160, 200);
  struct Case {
    int size;
    int taps;
  };
  for (const auto& [size, taps] :
       {Case{7, 7}, {11, 11}, {15, 15}, {19, 19}, {9, 11}, {0, 11}, {-7, 11}, {127, 11}}) {
    job.param.kernel_size = static_cast<int8_t>(size);
    const auto expected = job.after([t = taps](const auto& p) { naive_uv_denoise_strip(p, 1, t); });
    EXPECT_TRUE(job.after(zavri_mp_UV_denoise_inner, 1) == expected) << size;
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

  // Only the dispatcher knows a threshold of 0; a kernel still fills between the grid's samples.
  job.param.threshold = 0;
  EXPECT_TRUE(job.after(zavri_mp_UV_denoise_inner, 0) == job.bytes);
  const auto filled = job.after([](const auto& p) {
    naive_fill_grid(p.uv_plane, static_cast<int>(p.width), 40, static_cast<int>(p.stride), 0);
  });
  for (const Kernel& kernel : kKernels) EXPECT_TRUE(job.after(kernel.function, 0) == filled);
}

// Whether a column of samples of (u, v) counts for the samples of (100, 100) to its left.
TEST(UvDenoise, BoundsOfWhatCounts) {
  struct Case {
    int u;
    int v;
    int threshold;
    bool weighted;
    bool tolerant;
  };
  constexpr Case kCases[] = {
      {110, 100, 11, true, true},   {110, 100, 10, false, true},   {100, 90, 11, true, true},
      {100, 90, 10, false, true},   {119, 100, 20, true, true},    {120, 100, 20, false, false},
      {81, 100, 20, true, true},    {80, 100, 20, false, false},   {100, 81, 20, true, true},
      {100, 80, 20, false, false},  {100, 120, 20, false, true},   {100, 255, 127, false, true},
      {226, 100, 127, true, false}, {227, 100, 127, false, false}, {100, 110, -128, false, true},
  };
  constexpr size_t kRow = 30;  // grid row 15 of strip 0
  constexpr size_t kAt = 4 * 25;
  Random random(5);
  Job job(random, Style::kUniform, 240, 240, 240);
  std::fill_n(job.param.weight_table, 127, int8_t{64});
  for (const auto& [u, v, threshold, weighted, tolerant] : kCases) {
    std::fill(job.bytes.begin(), job.bytes.end(), uint8_t{100});
    for (size_t at = kAt; at < job.bytes.size(); at += 240) {
      job.bytes[at] = static_cast<uint8_t>(u);
      job.bytes[at + 1] = static_cast<uint8_t>(v);
    }
    job.param.threshold = static_cast<int8_t>(threshold);
    const auto moved = [&](ThreadPoolTaskFunc function) {
      const auto result = job.after(function, 0);
      const uint8_t* const left = job.row(result, kRow) + kAt - 4;
      return left[0] != 100 || left[1] != 100;
    };
    for (const Build build : builds_here()) {
      const UseBuild use(build);
      SCOPED_TRACE(::testing::Message() << build_name(build) << ' ' << u << ' ' << v);
      EXPECT_EQ(moved(zavri_mp_single_UV_denoise_new_inner_11), weighted) << threshold;
      EXPECT_EQ(moved(zavri_mp_single_UV_denoise_inner_11), tolerant);
    }
  }
}

}  // namespace
}  // namespace zavri::testing
