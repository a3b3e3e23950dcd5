#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <sstream>

#include "denoise3d/uv_run_smooth.h"
#include "include/zavricustpro.h"
#include "platform/log.h"
#include "tests/support/frames.h"
#include "tests/support/log_capture.h"
#include "tests/support/naive_denoise3d.h"
#include "tests/support/samples.h"
#include "tests/support/use_build.h"

namespace zavri::testing {
namespace {

using Bytes = std::vector<uint8_t>;

// Returns the scene with up to 7 added to each sample.
Bytes capture_of(Bytes scene, Random& random) {
  for (uint8_t& byte : scene) {
    byte = static_cast<uint8_t>(std::min(255, byte + static_cast<int>(random() % 8)));
  }
  return scene;
}

// Runs the four strips in every build: they must leave what the naive model leaves, in all frames.
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
    // A stride is the width as often as not, and may be odd.
    const auto stride = [&] {
      return static_cast<uint32_t>(least + std::max(0, pick(random, -9, 9)));
    };
    Frames frames(static_cast<uint32_t>(width), any(1, 40), stride(), stride(),
                  round % 3 ? 0 : any(0, 200));
    T_3DYuvDenoiseParam& p = frames.param;
    p.frame_num = any(0, 5);
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

// The rest of a row between edge sections is counted in 16 bits, and so is each field of the
// smoothing's record.
TEST(Denoise3dStrip, CutsRowRestsAndSmoothingFieldsTo16Bits) {
  constexpr struct {
    uint32_t width, height, y_stride, uv_stride;
    uint8_t frame_num;
  } kCases[] = {
      {12, 18, 40000, 65536 + 20, 2},   // both rests wrap
      {12, 18, 40000, 65536 + 20, 4},   // those of 4 frames do not
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

// 12 rows of a page each, with the planes adjacent: the last strip's luma, rows 9 to 14, lies on
// the first three chroma rows, of which the first strip has one. Who merges nothing there writes
// nothing there, because the other strip may be merging.
TEST(Denoise3dStrip, WritesOnlyWhatItMergesWhereStripsMeet) {
  constexpr uint32_t kPage = 4096;
  constexpr uint32_t kHeight = 12;
  if (sysconf(_SC_PAGESIZE) != kPage) GTEST_SKIP() << "pages of another size";
  constexpr size_t kSize = kPage * (kHeight + kHeight / 2);
  uint8_t* frames[2];
  for (uint8_t*& frame : frames) {
    void* const pages =
        mmap(nullptr, kSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(pages, MAP_FAILED);
    frame = static_cast<uint8_t*>(pages);
  }
  // Luma is never accepted, and chroma agrees in the last strip alone.
  memset(frames[1], 60, kPage * kHeight);
  memset(frames[1] + kPage * kHeight, 100, kPage * 3);
  ASSERT_EQ(mprotect(frames[0] + kPage * kHeight, kPage * 3, PROT_READ), 0);
  T_3DYuvDenoiseParam param{};
  param.frame_num = 2;
  param.switch_a = param.thresh_tune = param.threshY = 1;
  param.thresh = 10;
  param.width = param.y_stride = param.uv_stride = kPage;
  param.height = kHeight;
  param.uv_offset = kPage * kHeight;
  for (int k = 0; k < 2; ++k) param.frame_y[k] = frames[k];
  for (const Build build : builds_here()) {
    const UseBuild use(build);
    run_strip(param, 0);
    run_strip(param, 3);
  }
  for (uint8_t* const frame : frames) munmap(frame, kSize);
}

TEST(UvRunSmooth, EqualsTheNaiveModel) {
  Random random(8);
  for (int round = 0; round < 3000; ++round) {
    const int width = pick(random, 0, 90);
    const int rows = pick(random, 0, 20);
    const int stride = pick(random, 2, 100);  // may be below the width
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

std::vector<LogLine> geometry_line(const std::string& variant, const T_3DYuvDenoiseParam& p,
                                   int jump) {
  std::ostringstream text;
  text << variant << ", width:" << p.width << ", height:" << p.height
       << ", UVStride:" << p.uv_stride << ", YStride:" << p.y_stride << ", jumpUVLen:" << jump
       << ',';
  return {{kLogError, kTagProcessing, text.str()}};
}

// Of these strips only the last has a row.
TEST(Denoise3dStrip, LogsItsGeometryForFourFramesOnly) {
  const struct {
    uint8_t frame_num, a, b, c, thresh, threshY;
    int strip;
    const char* logged;
  } kCases[] = {
      {4, 0, 0, 0, 10, 1, 0, "inner4"}, {4, 0, 0, 0, 10, 1, 3, "inner4"},
      {4, 0, 1, 0, 10, 2, 0, "edge4"},  {4, 0, 0, 1, 10, 2, 3, "edge4"},
      {4, 1, 0, 0, 10, 9, 0, ""},       {4, 0, 0, 0, 1, 9, 0, ""},
      {4, 0, 1, 0, 10, 1, 0, ""},       {4, 0, 1, 0, 10, 9, 1, ""},
      {3, 0, 0, 0, 10, 9, 0, ""},       {3, 0, 1, 0, 10, 9, 3, ""},
  };
  for (const auto& c : kCases) {
    Frames frames(8, 4, 16, 65536 + 10, 0);
    T_3DYuvDenoiseParam& p = frames.param;
    p.frame_num = c.frame_num;
    p.thresh_tune = 1;
    p.switch_a = c.a;
    p.switch_b = c.b;
    p.switch_c = c.c;
    p.thresh = c.thresh;
    p.threshY = c.threshY;
    for (int k = 0; k < 4; ++k) frames.set(k, Bytes(frames.size()));
    take_log();
    run_strip(p, c.strip);
    EXPECT_EQ(take_log(), *c.logged ? geometry_line(c.logged, p, 2) : std::vector<LogLine>{}) << p;
  }
}

TEST(Denoise3dStrip, DoesNothingForNull) {
  Frames frames(8, 8, 8, 8, 0);
  frames.param.frame_num = frames.param.switch_d = 1;
  frames.param.thresh = 10;
  Random random(9);
  frames.set(0, samples(random, Style::kNearEqual, frames.size()));
  const Frames before = frames;
  const int32_t strip = 0;
  zavri_mp_3D_YUV_denoise_inner(nullptr, &frames.param, nullptr);
  zavri_mp_3D_YUV_denoise_inner(&strip, nullptr, nullptr);
  EXPECT_EQ(frames.bytes(0), before.bytes(0));
}

}  // namespace
}  // namespace zavri::testing
