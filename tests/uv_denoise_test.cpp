#include <gtest/gtest.h>

#include <algorithm>

#include "include/zavricustpro.h"
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

// This model works sample by sample and is written for nothing but to be read.
void naive_fill_grid(uint8_t* start, int width, int rows, int stride, uint32_t strip) {
  const auto row = [&](int n) { return start + ptrdiff_t{n} * stride; };
  const auto fill = [](uint8_t* at, bool edge) {
    for (const int i : {0, 1}) {
      at[2 + i] = static_cast<uint8_t>((at[i] + at[4 + i]) / 2);
      at[6 + i] = edge ? at[4 + i] : static_cast<uint8_t>((at[4 + i] + at[8 + i]) / 2);
    }
  };
  const auto average = [](uint8_t* to, const uint8_t* a, const uint8_t* b, bool edge) {
    for (int i = 0; i < (edge ? 6 : 8); ++i) to[i] = static_cast<uint8_t>((a[i] + b[i]) / 2);
    for (int i = 6; i < 8 && edge; ++i) to[i] = to[i - 2];
  };
  const bool even = width % 8 == 0;
  const int blocks = width / 8 - (even ? 1 : 0);
  for (int x = 0; x < 8 * blocks; x += 8) fill(row(0) + x, false);
  const bool repeats = strip > 2 && rows % 4 == 0;
  const int groups = rows / 4 - (repeats ? 1 : 0);
  for (int g = 0; g < groups; ++g) {
    for (int b = 0; b < blocks + (even && width > 0 ? 1 : 0); ++b) {
      const bool edge = b == blocks;
      uint8_t* r[5];
      for (int i = 0; i < 5; ++i) r[i] = row(4 * g + i) + 8 * b;
      fill(r[2], edge);
      fill(r[4], edge);
      average(r[1], r[0], r[2], edge);
      average(r[3], r[2], r[4], edge);
    }
  }
  for (int i = 1; i < 4 && repeats && rows > 0; ++i) {
    std::copy_n(row(4 * groups), width / 8 * 8, row(4 * groups + i));
  }
}

struct NaiveStrip {
  const T_UVDenoiseParam& p;
  uint32_t number;
  int reach;
  bool tolerant;

  bool last = number > 2;
  int quarter = static_cast<int>(p.height / 4);
  int rows = last ? static_cast<int>(p.height) - 3 * quarter : quarter;
  int columns = static_cast<int>(p.width / 4);
  uint8_t* start = p.uv_plane + size_t{p.stride} * number * static_cast<uint32_t>(quarter);

  // Neighbours are the samples at distances [from, to] along the row or the column, without 0.
  void filter(int i, int j, bool along_row, int from, int to) const {
    const ptrdiff_t row_step = 2 * static_cast<ptrdiff_t>(p.stride & 0x7fff);
    uint8_t* const centre = start + i * row_step + ptrdiff_t{4} * j;
    const int u = centre[0];
    const int v = centre[1];
    const int own_weight = tolerant ? 1 : 64;
    int sums[3] = {own_weight * u, own_weight * v, own_weight};
    for (int k = from; k <= to; ++k) {
      const uint8_t* const other = centre + k * (along_row ? 4 : row_step);
      const int d = std::max(std::abs(other[0] - u), std::abs(other[1] - v));
      int w = !tolerant && d < p.threshold ? p.weight_table[d] : 0;
      if (tolerant) w = std::abs(other[0] - u) < 20 && other[1] > v - 20;
      if (k == 0) w = 0;
      sums[0] += w * other[0];
      sums[1] += w * other[1];
      sums[2] += w;
    }
    for (const int c : {0, 1}) {
      centre[c] = static_cast<uint8_t>((sums[c] + (sums[2] >> 1)) / sums[2]);
    }
  }

  void run() const {
    const int r = reach;
    const int left = r == 3 ? 10 : 15;
    for (int i = 0; i < rows / 2; ++i) {
      for (int j = 0; j < r && !tolerant; ++j) filter(i, j, true, 1, left);
      for (int j = r; j <= columns - r - 1; ++j) filter(i, j, true, -r, r);
      for (int j = columns - 2 * r; j <= columns - r - 1 && !tolerant; ++j) {
        filter(i, j, true, 1 - left, -1);
      }
    }
    const int middle = rows / 2 - (last ? 2 * r : 0);
    for (int i = 0; i < middle + 2 * r; ++i) {
      const bool top = i < r;
      const bool bottom = i >= middle + r;
      if (tolerant && (top || bottom)) continue;
      // The lower border begins r rows further up, where the middle has just ended.
      for (int j = 0; j < columns; ++j) {
        filter(bottom ? i - r : i, j, false,
               top      ? 1
               : bottom ? -2 * r
                        : -r,
               top      ? 2 * r
               : bottom ? -1
                        : r);
      }
    }
    naive_fill_grid(start, static_cast<uint16_t>(p.width), rows, static_cast<uint16_t>(p.stride),
                    number);
  }
};

// This plane lies in a buffer that has room for what the strips of small planes touch around them.
struct Job {
  static constexpr size_t kRowsAround = 90;
  T_UVDenoiseParam param{};
  std::vector<uint8_t> bytes;

  Job(Random& random, Style style, uint32_t width, uint32_t height, uint32_t stride)
      : bytes(samples(random, style, (2 * height + 2 * kRowsAround) * stride)) {
    param.width = width;
    param.height = height;
    param.stride = stride;
    param.threshold = 20;
    for (int d = 0; d < 20; ++d) param.weight_table[d] = static_cast<int8_t>(100 - 5 * d);
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
TEST(UvDenoise, StripsEqualTheNaiveModelInEveryBuild) {
  Random random(1);
  for (int round = 0; round < (ZAVRI_EXHAUSTIVE ? 400 : 100); ++round) {
    const auto& [function, taps] = kKernels[round % 4];
    const int reach = (taps - 1) / 2;
    const int columns = taps == 7 ? 15 : taps + 13;
    const auto width =
        static_cast<uint32_t>(4 * columns + pick(random, 0, random() % 32 == 0 ? 1500 : 200));
    const int least = std::max(16 * reach - 9, 80);
    auto height = static_cast<uint32_t>(pick(random, least, least + 150));
    while ((height - 3 * (height / 4)) / 2 < static_cast<uint32_t>(2 * std::max(reach, 5)))
      ++height;
    // Samples are found with the low 15 bits of the stride.
    const uint32_t more[] = {0x8000, 0x4000};
    Job job(random, kStyles[random() % 4], width, height,
            width + random() % 20 + (round < 2 ? more[round] : 0));
    job.param.threshold = static_cast<int8_t>(pick(random, -128, 127) >> random() % 4);
    // With the centre's 64, multiples of 3 never add up to zero.
    const int lightest = round % 3 == 0 ? -42 : 0;
    const int heaviest = pick(random, 0, 42);
    for (int8_t& weight : job.param.weight_table) {
      weight = static_cast<int8_t>(3 * pick(random, lightest, heaviest));
    }
    const uint32_t strip = random_strip(random);
    const auto model = [&](int r, bool tolerant) {
      return job.after([&](const auto& p) { NaiveStrip{p, strip, r, tolerant}.run(); });
    };
    const auto expected = model(reach, false);
    const auto tolerant = taps > 11 ? expected : model(5, true);
    for (const Build build : builds_here()) {
      const UseBuild use(build);
      SCOPED_TRACE(::testing::Message()
                   << build_name(build) << " taps " << taps << " strip " << strip << ": " << width
                   << 'x' << height << " stride " << job.param.stride << " round " << round);
      ASSERT_TRUE(job.after(function, strip) == expected);
      if (taps > 11) continue;
      ASSERT_TRUE(job.after(zavri_mp_single_UV_denoise_inner_11, strip) == tolerant);
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
  for (const auto& [function, taps] : kKernels) {
    EXPECT_TRUE(job.after([call = function](const auto& p) { call(nullptr, &p, nullptr); }) ==
                job.bytes);
    function(&strip, nullptr, nullptr);
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
