#include <fcntl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>

#include "include/zavricustpro.h"
#include "platform/log.h"
#include "tests/support/allocations.h"
#include "tests/support/camera_folder.h"
#include "tests/support/log_capture.h"
#include "tests/support/samples.h"
#include "tests/support/system_faults.h"

namespace zavri::testing {
namespace {

using Bytes = std::vector<uint8_t>;

class DebugDump : public ::testing::Test {
 protected:
  DebugDump() { take_log(); }

  Bytes content(const std::string& name) { return phone_.content(name); }

  CameraFolder phone_;
};

const Bytes kA = {1, 2, 3};
const Bytes kB = {4, 5};

LogLine error_line(const std::string& text) { return {kLogError, kTagProcessing, text}; }

TEST_F(DebugDump, NamedDumpsHoldTheirBuffers) {
  EXPECT_EQ(zavri_debug_dump_yuv_simple1(kA.data(), 3, kB.data(), 2, "two"), 0);
  EXPECT_EQ(zavri_debug_dump_yuv_simple1(kB.data(), 2, kB.data(), 1, "two"), 0);
  EXPECT_EQ(content("zvcdumpyuv/two"), (Bytes{4, 5, 4, 4, 5}));
  {
    const WatchAllocations watch;
    EXPECT_EQ(zavri_debug_dump_yuv_simple2(kA.data(), 3, kA.data(), 2, kB.data(), 2, "planes"), 0);
    EXPECT_EQ(watch.freed, 1u);
  }
  EXPECT_EQ(content("zvcdumpyuv/planes"), (Bytes{1, 2, 3, 1, 4, 2, 5}));
  EXPECT_EQ(zavri_debug_dump_yuv_simple2(kA.data(), 3, kA.data(), 0, kB.data(), 0, "luma"), 0);
  EXPECT_EQ(content("zvcdumpyuv/luma"), kA);

  // The whole path has 63 characters, 29 of which are the folder's.
  const std::string name(70, 'n');
  EXPECT_EQ(zavri_debug_dump_yuv_simple1(kA.data(), 3, kB.data(), 2, name.c_str()), 0);
  EXPECT_EQ(content("zvcdumpyuv/" + name.substr(0, 63 - 29)), (Bytes{1, 2, 3, 4, 5}));
  EXPECT_EQ(take_log(), std::vector<LogLine>());
}

TEST_F(DebugDump, RefusalsHaveCodesAndNoFile) {
  const uint8_t* const a = kA.data();
  uint8_t buffer[2] = {};
  const auto simple2 = [&](const uint8_t* y, const uint8_t* u, int32_t u_len, const uint8_t* v,
                           int32_t v_len, const char* name = "x") {
    return zavri_debug_dump_yuv_simple2(y, 3, u, u_len, v, v_len, name);
  };
  const int codes[] = {
      zavri_debug_dump_yuv_simple1(nullptr, 3, a, 2, "x"),
      zavri_debug_dump_yuv_simple1(a, 3, nullptr, 2, "x"),
      zavri_debug_dump_yuv_simple1(a, 3, a, 2, nullptr),
      simple2(a, a, 3, a, 2),
      simple2(nullptr, a, 2, a, 2),
      simple2(a, nullptr, 2, a, 2),
      simple2(a, a, 2, nullptr, 2),
      simple2(a, a, 2, a, 2, nullptr),
      zavri_debug_dump_fixed_yuv(nullptr, 3, a, 2),
      zavri_debug_dump_fixed_yuv(a, 0, a, 2),
      zavri_debug_dump_fixed_yuv(a, 3, nullptr, 2),
      zavri_debug_dump_fixed_yuv(a, 3, a, 0),
      zavri_debug_load_fixed_yuv(buffer, 0, buffer, 1),
      zavri_debug_load_fixed_yuv(buffer, 1, nullptr, 1),
  };
  for (const int& code : codes) EXPECT_EQ(code, 2) << "call " << &code - codes;
  EXPECT_EQ(zavri_debug_load_fixed_yuv(buffer, 1, buffer, 1), 1);
  EXPECT_EQ(simple2(a, a, -1, a, -1), 3);
  EXPECT_EQ(simple2(a, a, INT32_MIN, a, INT32_MIN), 3);
  EXPECT_EQ(simple2(a, a, 1 << 30, a, 1 << 30), 3);
  EXPECT_EQ(phone_.opens, 0);
}

TEST_F(DebugDump, FixedDumpIsWrittenOnceAndLoadedAsOftenAsWanted) {
  EXPECT_EQ(zavri_debug_dump_fixed_yuv(kA.data(), 3, kB.data(), 2), 0);
  EXPECT_EQ(zavri_debug_dump_fixed_yuv(kB.data(), 1, kA.data(), 1), 0);
  const LogLine named =
      error_line("zavri_debug_dump_fixed_yuv, name: /data/misc/camera/zvcfixedyuv/0.yuv");
  EXPECT_EQ(take_log(), (std::vector<LogLine>{
                            named, named, error_line("zavri_debug_dump_fixed_yuv, file exist")}));
  EXPECT_EQ(content("zvcfixedyuv/0.yuv"), (Bytes{1, 2, 3, 4, 5}));

  Bytes first(4, 77);
  Bytes second(3, 77);  // is longer than what is left of the file
  EXPECT_EQ(zavri_debug_load_fixed_yuv(first.data(), 4, second.data(), 3), 0);
  EXPECT_EQ(first, (Bytes{1, 2, 3, 4}));
  EXPECT_EQ(second, (Bytes{5, 77, 77}));
  EXPECT_EQ(phone_.flags, (std::vector<int>{O_RDWR | O_CREAT, O_RDWR}));
  EXPECT_EQ(phone_.closes, 2);
  EXPECT_EQ(take_log(), std::vector<LogLine>());
}

T_DumpFrameInfo small_frame(uint32_t index, uint32_t count, bool by_size) {
  T_DumpFrameInfo info{};
  info.num_planes = 1;
  info.planes[0] = {0, 0, 4, 4, 1, 0};
  info.frame_idx = index;
  info.named_by_size = by_size;
  info.frame_count = count;
  return info;
}

TEST_F(DebugDump, FramesOfABurstShareTheTimeOfItsFirst) {
  const struct {
    int64_t now;
    uint32_t index, count;
    bool by_size;
    const char* name;
  } kCases[] = {
      {1000, 0, 7, false, "1000_4x1_0"},
      {1001, 5, 3, false, "1000_4x1_5"},
      {1002, 6, 0, false, "1000_4x1_6"},
      {1003, 7, 258, false, "1003_4x1_7"},
      {1004, 8, 257, false, "1004_4x1_8"},
      {1005, 0, 9, true, "4x1_0"},  // takes the time without a need
      {1006, 1, 9, false, "1005_4x1_1"},
      {0x123456789, 0, 9, false, "591751049_4x1_0"},
      {0x1fffffff0, UINT32_MAX, 1, false, "-16_4x1_-1"},
  };
  const Bytes frame = counting(4);
  for (const auto& c : kCases) {
    phone_.now = static_cast<time_t>(c.now);
    EXPECT_EQ(dumpYuv(frame.data(), small_frame(c.index, c.count, c.by_size)), 0);
    EXPECT_EQ(content(std::string("zvcfixedyuvprefix_") + c.name + "_suffix.yuv"), frame) << c.name;
  }
}

// The three planes have strides and bytes in front; the third is placed by the second's length
// alone.
TEST_F(DebugDump, FramesComeBackWhereTheyWere) {
  T_DumpFrameInfo info = small_frame(0, 1, true);
  info.num_planes = 3;
  info.planes[0] = {40, 0, 8, 4, 2, 16};
  info.planes[1] = {10, 5, 6, 3, 2, 0};
  info.planes[2] = {99, 60, 0, 2, 1, 3};
  constexpr std::pair<size_t, size_t> kStretches[] = {{0, 16}, {16, 4}, {24, 4}, {45, 3},
                                                      {51, 3}, {70, 3}, {73, 2}};
  const Bytes frame = counting(100);
  Bytes file;
  Bytes loaded(100, 200);
  Bytes expected = loaded;
  for (const auto& [at, size] : kStretches) {
    file.insert(file.end(), &frame[at], &frame[at] + size);
    std::copy_n(&frame[at], size, &expected[at]);
  }
  dumpYuv(frame.data(), info);
  EXPECT_EQ(content("zvcfixedyuvprefix_4x2_0_suffix.yuv"), file);
  EXPECT_EQ(loadYuv(loaded.data(), info), 0);
  EXPECT_EQ(loaded, expected);
  EXPECT_EQ(phone_.flags, (std::vector<int>{O_RDWR | O_CREAT, O_RDWR | O_CREAT}));
  EXPECT_EQ(phone_.closes, 2);

  // Eight planes of one byte are written, and never a ninth; negative heights have no rows.
  info.num_planes = UINT32_MAX;
  for (T_DumpPlaneInfo& plane : info.planes) plane = {1, 0, 1, 1, 1, 0};
  info.planes[4].height = -1;
  info.frame_idx = 1;
  dumpYuv(frame.data(), info);
  EXPECT_EQ(content("zvcfixedyuvprefix_1x1_1_suffix.yuv"), (Bytes{0, 1, 1, 1, 1, 1, 1}));

  // Positions count modulo 2^32.
  info = small_frame(2, 9, true);
  info.num_planes = 2;
  info.planes[0].len = 16;
  info.planes[1] = {0, 0xfffffff8, 1, 1, 1, 0};
  dumpYuv(frame.data(), info);
  EXPECT_EQ(content("zvcfixedyuvprefix_4x1_2_suffix.yuv"), (Bytes{0, 1, 2, 3, 8}));
}

TEST_F(DebugDump, NothingIsOverwrittenAndNothingMissingIsRead) {
  const T_DumpFrameInfo info = small_frame(3, 9, true);
  Bytes frame = counting(4);
  loadYuv(frame.data(), info);
  EXPECT_EQ(take_log(), std::vector<LogLine>{error_line(
                            "[ZavriDebug] night shot dump yuv, file exist, file is not exist")});
  EXPECT_EQ(frame, counting(4));
  dumpYuv(frame.data(), info);
  dumpYuv(frame.data() + 1, info);
  EXPECT_EQ(take_log(),
            std::vector<LogLine>{error_line("[ZavriDebug] night shot dump yuv, file exist")});
  EXPECT_EQ(content("zvcfixedyuvprefix_4x1_3_suffix.yuv"), frame);
  loadYuv(frame.data(), small_frame(3, 9, false));  // named by time: not loaded
  EXPECT_EQ(phone_.opens, 1);
  EXPECT_EQ(take_log(), std::vector<LogLine>());
}

TEST_F(DebugDump, ShortWritesAreIgnoredAndDescriptorZeroIsAFailure) {
  phone_.most_bytes = 2;
  EXPECT_EQ(zavri_debug_dump_fixed_yuv(kA.data(), 3, kB.data(), 2), 0);
  EXPECT_EQ(content("zvcfixedyuv/0.yuv"), (Bytes{1, 2, 4, 5}));
  phone_.open_result = 0;
  phone_.writes = 0;
  uint8_t untouched = 77;
  EXPECT_EQ(zavri_debug_load_fixed_yuv(&untouched, 1, &untouched, 1), 0);
  EXPECT_EQ(untouched, 77);
  EXPECT_EQ(zavri_debug_dump_yuv_simple2(kA.data(), 3, kB.data(), 2, kB.data(), 2, "x"), 0);
  EXPECT_EQ(phone_.writes, 0);
  EXPECT_EQ(phone_.closes, 1);  // the file that was opened is closed
  // Frames are written, read and closed whatever was opened.
  phone_.open_result = -1;
  dumpYuv(kA.data(), small_frame(1, 9, true));
  EXPECT_EQ(phone_.writes, 1);
  EXPECT_EQ(phone_.closes, 2);
}

}  // namespace
}  // namespace zavri::testing
