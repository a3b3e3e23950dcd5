#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <utility>

#include "include/zavricustpro.h"
#include "interface/process_lock.h"
#include "platform/log.h"
#include "tests/support/frames.h"
#include "tests/support/log_capture.h"
#include "tests/support/samples.h"
#include "tests/support/thread_faults.h"

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

using Thresholds = std::pair<int, int>;  // thresh, threshY

Thresholds after_call(T_3DYuvDenoiseParam param) {
  EXPECT_EQ(zavri_mp_3D_YUV_denoise(&param), 0u);
  return {param.thresh, param.threshY};
}

// Both thresholds as one curve at one gain gives them, at 20 megapixels: nothing is scaled away.
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
  EXPECT_EQ(scaled(2000, 1000, 50), 7);
  EXPECT_EQ(scaled(640, 480, 100), 0);
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
  // A second call takes the first one's results as requested values.
  T_3DYuvDenoiseParam again = without_frames(4000, 3000);
  again.thresh_tune = 1;
  again.gain = 20;
  for (const int expected : {13, 10, 8}) {
    zavri_mp_3D_YUV_denoise(&again);
    EXPECT_EQ(again.thresh, expected);
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
  const auto pool = [](const char* text) { return LogLine{kLogVerbose, kTagPool, text}; };
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

  expected.erase(expected.begin() + 2, expected.begin() + 4);  // the pool is there now
  expected[2] = entry("zavri-mp, height:3000, width:4000, gain:20, thresh:10, threshY:34, num:9");
  zavri_mp_3D_YUV_denoise(&param);
  EXPECT_EQ(take_log(), expected);
}

// One frame of 12 pairs a row, one of them 12 higher, for the smoothing: the only operation that
// the entry gives a frame below two megapixels.
Frames single_frame(uint8_t chroma) {
  Frames frames(24, 20, 24, 24, 0);
  frames.param.frame_num = frames.param.switch_d = 1;
  frames.param.thresh = 10;
  frames.fill(0, 0, chroma);
  for (int row = 0; row < 10; ++row) frames.chroma(0, row, 4) = chroma + 12;
  return frames;
}

bool is_smoothed(const Frames& frames, uint8_t chroma) {
  bool smoothed = true;
  for (int row = 0; row < 10; ++row) {
    for (int b = 0; b < 24; b += 2) smoothed &= frames.chroma(0, row, b) == chroma + 1;
  }
  return smoothed;
}

TEST_F(Denoise3dEntryPool, GoesAheadOnAHalfStartedPool) {
  Frames first = single_frame(90);
  {
    const FailPthread fail(PthreadCall::kCreate, 2, 11);
    EXPECT_EQ(zavri_mp_3D_YUV_denoise(&first.param), 0u);
  }
  EXPECT_TRUE(is_smoothed(first, 90));
  ThreadPool* const half = g_threadpool;
  EXPECT_EQ(half->threads.size(), 1u);

  Frames second = single_frame(30);
  zavri_mp_3D_YUV_denoise(&second.param);
  EXPECT_TRUE(is_smoothed(second, 30));
  EXPECT_NE(g_threadpool, half);
  delete half;
}

TEST_F(Denoise3dEntryPool, ServesCallersOfManyThreads) {
  const auto caller = [](uint8_t chroma) {
    for (int call = 0; call < 200; ++call) {
      Frames frames = single_frame(chroma);
      zavri_mp_3D_YUV_denoise(&frames.param);
      EXPECT_TRUE(is_smoothed(frames, chroma));
    }
  };
  std::vector<std::thread> callers;
  for (const uint8_t chroma : {30, 90, 150}) callers.emplace_back(caller, chroma);
  for (std::thread& thread : callers) thread.join();
}

// Frames of two megapixels, the smallest whose thresholds are not scaled to nothing.
TEST_F(Denoise3dEntryPool, EqualsItsFourStripsInTurn) {
  Random random(9);
  const uint32_t width = 2000;
  const uint32_t height = 1000;
  // Room between the planes for what the edges of 2 and 3 frames drift.
  Frames frames(width, height, width, width, width / 2 * (height / 8));
  for (int k = 0; k < 4; ++k) {
    std::vector<uint8_t> bytes = samples(random, Style::kUniform, frames.size());
    for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(100 + byte % 24);
    frames.set(k, std::move(bytes));
  }
  frames.param.thresh_tune = 1;
  frames.param.switch_d = 1;
  frames.param.ref_index = 0;
  constexpr struct { uint8_t a, b, c; } kSwitches[] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 0, 0}};
  for (const auto& switches : kSwitches) {
    for (uint8_t frame_num = 1; frame_num <= 4; ++frame_num) {
      Frames whole = frames;
      T_3DYuvDenoiseParam& p = whole.param;
      p.switch_a = switches.a;
      p.switch_b = switches.b;
      p.switch_c = switches.c;
      p.frame_num = frame_num;
      p.thresh = p.threshY = 80;
      Frames strips = whole;
      zavri_mp_3D_YUV_denoise(&p);

      strips.param.thresh = p.thresh;
      strips.param.threshY = p.threshY;
      for (int strip = 0; strip < 4; ++strip) run_strip(strips.param, strip);
      EXPECT_FALSE(whole.bytes(0) == frames.bytes(0)) << p;
      EXPECT_TRUE(whole.bytes(0) == strips.bytes(0)) << p;
      for (int k = 1; k < 4; ++k) EXPECT_TRUE(whole.bytes(k) == frames.bytes(k)) << p;
    }
  }
}

}  // namespace
}  // namespace zavri::testing
