#include <gtest/gtest.h>

#include <algorithm>

#include "denoise3d/uv_run_smooth.h"
#include "include/zavricustpro.h"
#include "tests/support/frames.h"
#include "tests/support/naive_denoise3d.h"
#include "tests/support/samples.h"
#include "tests/support/use_build.h"

namespace zavri::testing {
namespace {

using Bytes = std::vector<uint8_t>;

// The scene with up to 7 added to each sample.
Bytes capture_of(Bytes scene, Random& random) {
  for (uint8_t& byte : scene) {
    byte = static_cast<uint8_t>(std::min(255, byte + static_cast<int>(random() % 8)));
  }
  return scene;
}

// The four strips in every build leave what the naive model leaves, in all frames.
void expect_as_the_model(const Frames& frames) {
  Frames expected = frames;
  for (int strip = 0; strip < 4; ++strip) naive_denoise_strip(expected.param, strip);
  for (const Build build : builds_here()) {
    const UseBuild use(build);
    Frames actual = frames;
    for (int strip = 0; strip < 4; ++strip) run_strip(actual.param, strip);
    for (int k = 0; k < 4; ++k) {
      ASSERT_TRUE(actual.bytes(k) == expected.bytes(k))
          << build_name(build) << " frame " << k << ": " << frames.param;
    }
  }
}

TEST(Denoise3dStrip, EqualsTheNaiveModel) {
  Random random(5);
  const auto any = [&random](int low, int high) {
    return static_cast<uint8_t>(pick(random, low, high));
  };
  for (int round = 0; round < 2000; ++round) {
    const int width = pick(random, 1, round % 8 ? 40 : 300);
    const int least = (width + 1) / 2 * 2;
    // Equal to the width as often as not; odd ones as well.
    const auto stride = [&] {
      return static_cast<uint32_t>(least + std::max(0, pick(random, -9, 9)));
    };
    Frames frames(static_cast<uint32_t>(width), any(1, 40), stride(), stride(),
                  round % 3 ? 0 : any(0, 200));
    T_3DYuvDenoiseParam& p = frames.param;
    p.frame_num = any(1, 4);
    p.ref_index = any(0, 3);
    for (uint8_t* const byte : {&p.switch_a, &p.switch_b, &p.switch_c, &p.switch_d}) {
      *byte = pick(random, 0, 2) ? 0 : any(1, 255);
    }
    p.thresh_tune = any(0, 7);
    p.gain = any(0, 20);
    p.thresh = any(0, round % 4 ? 12 : 255);
    p.threshY = any(0, round % 4 ? 12 : 255);
    const Bytes scene = samples(random, kStyles[random() % 4], frames.size());
    for (int k = 0; k < 4; ++k) frames.set(k, capture_of(scene, random));
    expect_as_the_model(frames);
    if (HasFatalFailure()) return;
  }
}

// What is counted in 16 bits: the rest of a row between edge sections, and each field of the
// smoothing's record.
TEST(Denoise3dStrip, CutsRowRestsAndSmoothingFieldsTo16Bits) {
  constexpr struct {
    uint32_t width, height, y_stride, uv_stride;
    uint8_t frame_num;
  } kCases[] = {
      {12, 18, 40000, 65536 + 20, 2},   // both rests wrap
      {12, 18, 40000, 65536 + 20, 4},   // but not those of 4 frames
      {65536 + 6, 4, 65550, 65544, 1},  // smoothed as if 6 wide with a stride of 8
      {2, 8 * 65537, 2, 2, 1},          // one row in each strip
      {70000, 2, 70000, 70000, 3},      // ramps longer than a kernel call
  };
  Random random(6);
  for (const auto& c : kCases) {
    Frames frames(c.width, c.height, c.y_stride, c.uv_stride, 0);
    frames.param.frame_num = c.frame_num;
    frames.param.thresh_tune = frames.param.switch_b = frames.param.switch_d = 1;
    frames.param.thresh = frames.param.threshY = 6;
    const Bytes scene = samples(random, Style::kNearEqual, frames.size());
    for (int k = 0; k < 4; ++k) frames.set(k, capture_of(scene, random));
    expect_as_the_model(frames);
  }
}

// Two frames that agree everywhere and differ by one, so that what was merged shows.
TEST(Denoise3dStrip, EdgeSectionsOfTwoAndThreeFramesDrift) {
  Random random(7);
  for (int round = 0; round < 300; ++round) {
    const auto width = static_cast<uint32_t>(pick(random, 1, 60));
    const auto height = static_cast<uint32_t>(pick(random, 1, 60));
    const auto stride = [&] {
      return width + static_cast<uint32_t>(round % 20 ? pick(random, 0, 20) : 65530);
    };
    Frames frames(width, height, stride(), stride(), 4000);
    T_3DYuvDenoiseParam& p = frames.param;
    p.frame_num = static_cast<uint8_t>(pick(random, 2, 3));
    p.thresh_tune = p.switch_b = 1;
    p.threshY = 2;
    frames.fill(0, 50, 100);
    for (const int k : {1, 2}) frames.fill(k, 51, 101);
    Frames expected = frames;

    const size_t quarter = width / 4;
    const size_t chroma_step = width + 2 * quarter + ((p.uv_stride - width) & 0xffff);
    const size_t luma_step = width + 2 * quarter + ((2 * p.y_stride - width) & 0xffff);
    for (const size_t strip : {0, 3}) {
      const size_t rows = strip == 0 ? height / 8 : height / 2 - 3 * (height / 8);
      for (size_t i = 0; i < rows; ++i) {
        for (const size_t section : {size_t{0}, size_t{width}}) {
          const size_t uv = i * chroma_step + section;
          const size_t y = i * luma_step + section;
          std::fill_n(&expected.chroma(0, strip * (height / 8), uv), 2 * quarter, uint8_t{101});
          std::fill_n(&expected.luma(0, strip * (height / 4), y), 2 * quarter, uint8_t{51});
          std::fill_n(&expected.luma(0, strip * (height / 4) + 1, y), 2 * quarter, uint8_t{51});
        }
      }
    }
    for (int strip = 0; strip < 4; ++strip) run_strip(p, strip);
    ASSERT_TRUE(frames.bytes(0) == expected.bytes(0)) << p;
  }
}

TEST(UvRunSmooth, EqualsTheNaiveModel) {
  Random random(8);
  for (int round = 0; round < 3000; ++round) {
    const int width = pick(random, 0, 90);
    const int rows = pick(random, 0, 20);
    const int stride = pick(random, 2, 100);  // also below the width
    const auto size = static_cast<size_t>(rows * stride + width + 8);
    const Bytes before = samples(random, kStyles[round % 4], size);
    Bytes expected = before;
    naive_smooth_strip(expected.data() + 2, width, rows, stride);
    for (const Build build : builds_here()) {
      const UseBuild use(build);
      Bytes actual = before;
      T_UvRunSmoothParam param{};
      param.width = static_cast<uint16_t>(width);
      param.rows = static_cast<uint16_t>(rows);
      param.stride = static_cast<uint16_t>(stride);
      param.plane = actual.data() + 2;
      uv_run_smooth(&param);
      ASSERT_TRUE(actual == expected)
          << build_name(build) << ' ' << width << 'x' << rows << " stride " << stride;
    }
  }
}

// Along a row, and down a column whose rows a pair apart from everything parts.
TEST(UvRunSmooth, RoundsMeansOfRunsWithinTheTolerance) {
  const struct {
    std::vector<uint8_t> values, smoothed;
  } kRuns[] = {
      {{10, 11}, {11, 11}},
      {{10, 29, 30, 11}, {20, 20, 21, 21}},  // 20 apart from the anchor ends a run
      {{29, 10, 9, 28}, {20, 20, 19, 19}},
      {{5, 0, 24, 255, 240, 236}, {10, 10, 10, 244, 244, 244}},
      {{7, 60, 120, 200}, {7, 60, 120, 200}},
  };
  for (const auto& run : kRuns) {
    const size_t count = run.values.size();
    for (const size_t step : {2, 4}) {
      for (const size_t moving : {0, 1}) {  // U or V
        Bytes plane(step * count, 100);
        for (size_t i = 0; i < count; ++i) {
          plane[step * i + moving] = run.values[i];
          if (step == 4) plane[step * i + 3 - moving] = 250;
        }
        T_UvRunSmoothParam param{};
        param.width = static_cast<uint16_t>(step == 4 ? 2 : 2 * count);
        param.rows = static_cast<uint16_t>(step == 4 ? count : 1);
        param.stride = static_cast<uint16_t>(step == 4 ? 4 : 2 * count);
        param.plane = plane.data();
        uv_run_smooth(&param);
        for (size_t i = 0; i < count; ++i) {
          EXPECT_EQ(plane[step * i + moving], run.smoothed[i])
              << "run " << &run - kRuns << " step " << step << " pair " << i;
        }
      }
    }
  }
}

}  // namespace
}  // namespace zavri::testing
