// What the library does when the system fails it, one call at a time, and under load.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <thread>
#include <vector>

#include "include/zavricustpro.h"
#include "tests/support/camera_folder.h"
#include "tests/support/samples.h"
#include "tests/support/system_faults.h"
#include "tests/support/vendor_calls.h"

namespace zavri::testing {
namespace {

using Bytes = std::vector<uint8_t>;

constexpr uint8_t kOld = 77;  // fills what a call may write

// Each operation returns its results and what it wrote. The scaler that the tests have fills a
// frame of the same size alone.
Bytes resize() {
  const Bytes source = counting(24 * 24 * 3 / 2, 1);
  Bytes result(source.size(), kOld);
  T_ResizeParam param{};
  param.src_width = param.src_height = param.src_stride = 24;
  param.dst_width = param.dst_height = param.dst_stride = 24;
  param.src_y = source.data();
  param.src_uv = source.data() + 24 * 24;
  param.dst_y = result.data();
  param.dst_uv = result.data() + 24 * 24;
  result.push_back(static_cast<uint8_t>(zavri_mp_resize_process(&param)));
  return result;
}

Bytes resize_and_end_the_pool() {
  const Bytes result = resize();
  HALThreadPoolDestroy();
  return result;
}

// Smooths chroma that alternates by a few levels.
Bytes denoise() {
  Bytes frame(32 * 32 * 3 / 2);
  for (size_t i = 0; i < frame.size(); ++i) frame[i] = static_cast<uint8_t>(100 + i % 7);
  T_3DYuvDenoiseParam param{};
  param.frame_num = param.switch_d = 1;
  param.thresh = 2;
  param.width = param.height = param.y_stride = param.uv_stride = 32;
  param.uv_offset = 32 * 32;
  param.frame_y[0] = frame.data();
  frame.push_back(static_cast<uint8_t>(zavri_mp_3D_YUV_denoise(&param)));
  return frame;
}

Bytes compose() {
  const Bytes source = counting(32 * 16 * 3 / 2, 1);
  Bytes result(source.size(), kOld);
  T_ComposeParam param{32, 16, 2, 8, 0, source.data(), source.data(), result.data()};
  result.push_back(static_cast<uint8_t>(zavri_mp_compose_two_same_frame(&param)));
  return result;
}

Bytes reduce_radially() {
  Bytes plane = counting(32 * 32, 1);
  zavri_mp_RNR_init_base(0, 0, 0, 1, 0);  // takes 48 buffers of no bytes
  zavri_mp_RNR_init_base(32, 32, 32, 100, 90);
  for (uint32_t tile = 0; tile < 12; ++tile) zavri_mp_RNR_init_weight(&tile);
  for (uint32_t tile = 0; tile < 12; ++tile) zavri_mp_RNR_process_inner(&tile, plane.data());
  return plane;
}

Bytes dump_planes() {
  CameraFolder phone;
  const Bytes y = counting(3, 1);
  const int32_t code = zavri_debug_dump_yuv_simple2(y.data(), 3, &y[0], 1, &y[1], 1, "planes");
  Bytes result = phone.content("zvcdumpyuv/planes");
  result.push_back(static_cast<uint8_t>(code));
  return result;
}

// Dumps 1, 2, 3 and 4, 5, and loads them back.
Bytes dump_fixed() {
  CameraFolder phone;
  const Bytes bytes = counting(5, 1);
  Bytes result(5, kOld);
  const int32_t dumped = zavri_debug_dump_fixed_yuv(&bytes[0], 3, &bytes[3], 2);
  const int32_t loaded = zavri_debug_load_fixed_yuv(&result[0], 3, &result[3], 2);
  result.push_back(static_cast<uint8_t>(dumped));
  result.push_back(static_cast<uint8_t>(loaded));
  return result;
}

// Dumps two rows of two bytes under the time, and under the size, and loads the latter back.
Bytes dump_frame() {
  CameraFolder phone;
  const Bytes bytes = counting(4, 1);
  Bytes result(4, kOld);
  T_DumpFrameInfo info{};
  info.num_planes = 1;
  info.planes[0] = {4, 0, 2, 2, 2, 0};
  dumpYuv(bytes.data(), info);
  info.named_by_size = 1;
  info.frame_idx = 1;
  dumpYuv(bytes.data(), info);
  loadYuv(result.data(), info);
  const Bytes timed = phone.content("zvcfixedyuvprefix_1000_2x2_0_suffix.yuv");
  result.insert(result.end(), timed.begin(), timed.end());
  return result;
}

// Where a failing call shows. A status above 0 ends the process, which -1 stands for any crash of.
struct Effect {
  SystemCall call;
  int nth;  // is -n for all behind the n-th
  int status;
  Bytes outcome;
};
constexpr int kCrash = -1;

struct Operation {
  const char* name;
  Bytes (*run)();
  std::vector<Effect> effects;
};

Bytes with(Bytes bytes, uint8_t code) {
  bytes.push_back(code);
  return bytes;
}

const Operation kOperations[] = {
    {"resize",
     resize_and_end_the_pool,
     {{SystemCall::kMalloc, 0, kCrash, {}},
      {SystemCall::kNew, 0, kCrash, {}},
      {SystemCall::kCreate, 1, kWaitsForever, {}}}},
    {"compose", compose, {{SystemCall::kMalloc, 1, 0, with(Bytes(32 * 16 * 3 / 2, kOld), 0)}}},
    {"radial noise reduction", reduce_radially, {{SystemCall::kMalloc, -48, kCrash, {}}}},
    {"dump of planes",
     dump_planes,
     {{SystemCall::kMalloc, 1, 0, {3}},
      {SystemCall::kOpen, 1, 0, {0}},
      {SystemCall::kWrite, 1, 0, {1, 2, 0}},
      {SystemCall::kWrite, 2, 0, {1, 2, 3, 0}}}},
    {"fixed dump",
     dump_fixed,
     {{SystemCall::kStat, 2, 0, {77, 77, 77, 77, 77, 0, 1}},
      {SystemCall::kOpen, 1, 0, {77, 77, 77, 77, 77, 0, 1}},
      {SystemCall::kOpen, 2, 0, {77, 77, 77, 77, 77, 0, 0}},
      {SystemCall::kWrite, 1, 0, {4, 5, 77, 77, 77, 0, 0}},
      {SystemCall::kWrite, 2, 0, {1, 2, 3, 77, 77, 0, 0}},
      {SystemCall::kRead, 1, 0, {77, 77, 77, 1, 2, 0, 0}},
      {SystemCall::kRead, 2, 0, {1, 2, 3, 77, 77, 0, 0}}}},
    {"dump of a frame",
     dump_frame,
     {{SystemCall::kTime, 1, 0, {1, 2, 3, 4}},
      {SystemCall::kOpen, 1, 0, {1, 2, 3, 4}},
      {SystemCall::kOpen, 2, 0, {77, 77, 77, 77, 1, 2, 3, 4}},
      {SystemCall::kOpen, 3, 0, {77, 77, 77, 77, 1, 2, 3, 4}},
      {SystemCall::kStat, 3, 0, {77, 77, 77, 77, 1, 2, 3, 4}},
      {SystemCall::kWrite, 1, 0, {1, 2, 3, 4, 3, 4}},
      {SystemCall::kWrite, 2, 0, {1, 2, 3, 4, 1, 2}},
      {SystemCall::kWrite, 3, 0, {3, 4, 77, 77, 1, 2, 3, 4}},
      {SystemCall::kWrite, 4, 0, {1, 2, 77, 77, 1, 2, 3, 4}},
      {SystemCall::kRead, 1, 0, {77, 77, 1, 2, 1, 2, 3, 4}},
      {SystemCall::kRead, 2, 0, {1, 2, 77, 77, 1, 2, 3, 4}}}},
};

// Runs `work` in a process of its own and returns how that ends.
template <class Work>
int status_of(Work work) {
  const pid_t child = fork();
  if (child == 0) {
    if (freopen("/dev/null", "w", stderr) == nullptr) _exit(EXIT_FAILURE);
    _exit(work());
  }
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : kCrash;
}

Effect effect_of(const Operation& operation, SystemCall call, int nth, const Bytes& without) {
  for (const Effect& effect : operation.effects) {
    if (effect.call == call && (effect.nth == nth || (effect.nth <= 0 && nth > -effect.nth)))
      return effect;
  }
  return {call, nth, 0, without};
}

// Whatever is not listed above has no effect at all.
TEST(Faults, EveryFailingCallOfTheSystemHasTheEffectThatTheHeaderTells) {
  constexpr int kOtherwise = 99;
  constexpr int kNotCalled = 98;  // tasks take turns: not every run makes as many calls
  HALThreadPoolDestroy();
  for (const Operation& operation : kOperations) {
    const Bytes without = operation.run();
    for (int kind = 0; kind < static_cast<int>(SystemCall::kEnd); ++kind) {
      const auto call = static_cast<SystemCall>(kind);
      // What has no pool takes memory by malloc() alone; the rest is this test's.
      if (call == SystemCall::kNew && operation.run != resize_and_end_the_pool) continue;
      int calls = 0;
      {
        const FailCall none(call, 0);
        operation.run();
        calls = none.calls();
      }
      for (int nth = 1; nth <= calls; ++nth) {
        const Effect effect = effect_of(operation, call, nth, without);
        const int status = status_of([&] {
          const FailCall fail(call, nth);
          const Bytes outcome = operation.run();
          if (fail.calls() < nth) return kNotCalled;
          return outcome == effect.outcome ? 0 : kOtherwise;
        });
        const bool crashed = status != 0 && status != kOtherwise;
        EXPECT_TRUE(status == effect.status || status == kNotCalled ||
                    (effect.status == kCrash && crashed))
            << operation.name << ": call " << nth << " of kind " << kind << " ends with " << status;
      }
    }
  }
}

// The second strip's thread is missing, and the next call builds a pool of four.
TEST(Faults, AHalfStartedPoolWorksAllStripsAndIsReplaced) {
  HALThreadPoolDestroy();
  const Bytes expected = denoise();
  HALThreadPoolDestroy();
  ThreadPool* half = nullptr;
  {
    const FailCall fail(SystemCall::kCreate, 2);
    EXPECT_EQ(denoise(), expected);
    half = g_threadpool;
    EXPECT_EQ(half->threads.size(), 1u);
  }
  EXPECT_EQ(denoise(), expected);
  EXPECT_NE(g_threadpool, half);
  delete half;
}

TEST(Faults, EightHeavyCallersAndANinthGetTheBytesThatOneGets) {
  constexpr int kRounds = 100;
  const Bytes source = counting(64 * 64, 1);
  const T_OptRect rect{1, 1, 50, 50};
  const auto measure = [&] { return zavri_auto_shoot_opt_get_FV_value(&source[0], &rect, 64, 64); };
  const Bytes denoised = denoise();
  const Bytes resized = resize();
  const Bytes composed = compose();
  const uint32_t measured = measure();
  std::atomic<int> right{0};
  std::vector<std::thread> callers;
  for (int caller = 0; caller < 8; ++caller) {
    callers.emplace_back([&, caller] {
      for (int round = 0; round < kRounds; ++round) {
        right += (round + caller) % 2 == 0 ? denoise() == denoised : resize() == resized;
      }
    });
  }
  for (int round = 0; round < kRounds; ++round) right += compose() == composed;
  for (int round = 0; round < kRounds; ++round) right += measure() == measured;
  for (std::thread& caller : callers) caller.join();
  EXPECT_EQ(right, 10 * kRounds);
  take_scaler_calls();
}

// A process that forks meanwhile goes on, and so does its child with all that needs no pool.
TEST(Faults, AThousandPoolsComeAndGo) {
  const Bytes denoised = denoise();
  const Bytes composed = compose();
  constexpr int kPools = ZAVRI_EXHAUSTIVE ? 1000 : 100;
  for (int k = 0; k < kPools; ++k) {
    ASSERT_EQ(HALThreadPoolInit(), 0);
    ASSERT_EQ(denoise(), denoised);
    if (k == kPools / 2) {
      EXPECT_EQ(status_of([&] { return compose() == composed ? 0 : 1; }), 0);
    }
    ASSERT_EQ(HALThreadPoolDestroy(), 0);
  }
}

}  // namespace
}  // namespace zavri::testing
