#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "include/zavricustpro.h"
#include "interface/heavy_operation.h"
#include "platform/log.h"
#include "tests/support/log_capture.h"
#include "tests/support/system_faults.h"

namespace zavri::testing {
namespace {

using Points = std::vector<T_GainThreshPoint>;

// Without a valid number of frames the strips do nothing, and frames of any size need no memory.
T_3DYuvDenoiseParam without_frames(uint32_t width, uint32_t height) {
  T_3DYuvDenoiseParam param{};
  param.width = width;
  param.height = height;
  param.y_stride = param.uv_stride = width;
  return param;
}

using Thresholds = std::pair<int, int>;  // are thresh and threshY

Thresholds after_call(T_3DYuvDenoiseParam param) {
  EXPECT_EQ(zavri_mp_3D_YUV_denoise(&param), 0u);
  return {param.thresh, param.threshY};
}

// Returns both thresholds for one curve at one gain, at 20 megapixels: nothing is scaled away.
Thresholds tuned(uint8_t gain, uint8_t requested, const Points* points) {
  T_3DYuvDenoiseParam param = without_frames(5000, 4000);
  param.thresh_tune = param.switch_a = 1;
  param.gain = gain;
  param.thresh = param.threshY = requested;
  if (points != nullptr) {
    param.thresh_table = param.threshY_table = points->data();
    param.thresh_table_len = param.threshY_table_len = static_cast<uint8_t>(points->size());
  }
  return after_call(param);
}

TEST(Denoise3dEntry, BuiltInCurveOverTheGain) {
  constexpr int kAbove10[] = {6,  8,  11, 13, 16, 15, 15, 16, 16, 16,
                              17, 17, 17, 18, 18, 18, 19, 19, 19, 20};
  for (int gain = 0; gain <= 255; ++gain) {
    const int expected = gain <= 10 ? 0 : gain >= 30 ? 20 : kAbove10[gain - 11];
    EXPECT_EQ(tuned(static_cast<uint8_t>(gain), 0, nullptr), (Thresholds{expected, expected}))
        << "gain " << gain;
  }
}

TEST(Denoise3dEntry, CallersCurvesAndRequestedValues) {
  const Points one = {{8, 40}};
  const Points steep = {{4, 10}, {7, 200}, {200, 255}};
  const struct {
    const Points* points;
    uint8_t gain, requested;
    int expected;
  } kCases[] = {
      {&one, 0, 0, 0},      {&one, 4, 0, 20},       {&one, 7, 0, 35},       {&one, 8, 0, 40},
      {&one, 9, 0, 40},     {&steep, 3, 0, 7},      {&steep, 5, 0, 66 + 6}, {&steep, 6, 0, 136},
      {&steep, 7, 0, 200},  {&steep, 8, 0, 199},    {&steep, 199, 0, 254},  {&steep, 255, 0, 255},
      {nullptr, 20, 0, 16}, {nullptr, 20, 1, 1},    {&one, 20, 100, 100},   {&one, 20, 101, 40},
      {&one, 20, 255, 40},  {nullptr, 20, 150, 16},
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(tuned(c.gain, c.requested, c.points), (Thresholds{c.expected, c.expected}))
        << "case " << &c - kCases;
  }
  // Points without a count, and a count without points, are no curve.
  T_3DYuvDenoiseParam halves = without_frames(5000, 4000);
  halves.thresh_tune = halves.switch_a = 1;
  halves.gain = 20;
  halves.thresh_table_len = 3;
  halves.threshY_table = one.data();
  EXPECT_EQ(after_call(halves), (Thresholds{16, 16}));
}

TEST(Denoise3dEntry, ScalesByMegapixels) {
  constexpr int kPercent[] = {0,  0,  15, 30, 37, 45, 55, 65, 75, 77, 79,
                              81, 83, 85, 86, 88, 90, 92, 95, 97, 100};
  const auto scaled = [](uint32_t width, uint32_t height, uint8_t requested) {
    T_3DYuvDenoiseParam param = without_frames(width, height);
    param.thresh_tune = 1;
    param.thresh = requested;
    return after_call(param).first;
  };
  for (uint32_t megapixels = 1; megapixels <= 20; ++megapixels) {
    EXPECT_EQ(scaled(megapixels * 1000, 1000, 100), kPercent[megapixels]);
    EXPECT_EQ(scaled(1, megapixels * 1000000 - 1, 100), kPercent[megapixels - 1]);
  }
  // Megapixels count modulo 256, the pixels themselves modulo 2^32.
  EXPECT_EQ(scaled(255000, 1000, 100), 100);
  EXPECT_EQ(scaled(257000, 1000, 100), 0);
  EXPECT_EQ(scaled(258000, 1000, 100), 15);
  EXPECT_EQ(scaled(65536, 65536, 100), 0);
  EXPECT_EQ(scaled(65536, 65536 + 31, 100), 15);
}

TEST(Denoise3dEntry, TunesOnlyWhatItsSwitchesAskFor) {
  const struct {
    uint8_t tune, a, b, c;
    Thresholds expected;
  } kCases[] = {
      {0, 0, 0, 0, {150, 160}}, {1, 0, 0, 0, {13, 160}},   {0, 1, 0, 0, {150, 13}},
      {0, 0, 9, 0, {150, 13}},  {0, 0, 0, 255, {150, 13}}, {7, 1, 1, 1, {13, 13}},
  };
  for (const auto& c : kCases) {
    T_3DYuvDenoiseParam param = without_frames(4000, 3000);
    param.gain = 20;
    param.thresh_tune = c.tune;
    param.switch_a = c.a;
    param.switch_b = c.b;
    param.switch_c = c.c;
    param.thresh = 150;
    param.threshY = 160;
    EXPECT_EQ(after_call(param), c.expected);
  }
}

class Denoise3dEntryPool : public ::testing::Test {
 protected:
  Denoise3dEntryPool() {
    HALThreadPoolDestroy();
    take_log();
  }
  ~Denoise3dEntryPool() override { HALThreadPoolDestroy(); }
};

TEST_F(Denoise3dEntryPool, IsSilentWithoutGeometry) {
  for (const auto field : {&T_3DYuvDenoiseParam::width, &T_3DYuvDenoiseParam::height,
                           &T_3DYuvDenoiseParam::y_stride, &T_3DYuvDenoiseParam::uv_stride}) {
    T_3DYuvDenoiseParam param = without_frames(5000, 4000);
    param.*field = 0;
    param.thresh_tune = param.switch_a = 1;
    param.thresh = param.threshY = 150;
    EXPECT_EQ(after_call(param), (Thresholds{150, 150}));
  }
  EXPECT_EQ(take_log(), std::vector<LogLine>{});
  EXPECT_EQ(g_threadpool, nullptr);
}

TEST_F(Denoise3dEntryPool, LogsAndLocksInOrder) {
  const auto entry = [](const char* text) { return LogLine{kLogError, kTagProcessing, text}; };
  const auto pool = [](const char* text) { return LogLine{kLogVerbose, kTagDefog, text}; };
  const auto watched = [](const char* event) { return LogLine{0, kWatchTag, event}; };
  std::vector<LogLine> expected = {
      entry("zavri-mp 3dyuv begin"),
      watched("lock"),
      pool("Constructed ThreadPool of size 4."),
      pool("4 threads created by the thread pool"),
      entry("zavri-mp, height:3000, width:4000, gain:20, thresh:13, threshY:41, num:9"),
      watched("unlock"),
      entry("zavri-mp 3dyuv end"),
      watched("destroy condition"),
  };
  T_3DYuvDenoiseParam param = without_frames(4000, 3000);
  param.frame_num = 9;
  param.gain = 20;
  param.thresh_tune = param.switch_c = 1;
  param.threshY = 50;
  const WatchMutex watch(&g_mp_process_lock);
  zavri_mp_3D_YUV_denoise(&param);
  EXPECT_EQ(take_log(), expected);

  expected.erase(expected.begin() + 2, expected.begin() + 4);  // by now there is a pool
  expected[2] = entry("zavri-mp, height:3000, width:4000, gain:20, thresh:10, threshY:34, num:9");
  zavri_mp_3D_YUV_denoise(&param);
  EXPECT_EQ(take_log(), expected);
}

}  // namespace
}  // namespace zavri::testing
