#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "include/zavricustpro.h"
#include "platform/log.h"
#include "tests/support/frames.h"
#include "tests/support/log_capture.h"
#include "tests/support/use_build.h"

namespace zavri::testing {
namespace {

struct Yuv {
  int u, v, y;
};

// The merged luma differs from the reference's where it is accepted; the block is flat then.
struct PositionCase {
  uint8_t thresh, threshY;
  Yuv reference;
  std::vector<Yuv> others;
  Yuv merged;
  bool chroma_only = false;  // the inner variant instead of the whole frame
};

const PositionCase kPositions[] = {
    // A difference equal to the threshold does not agree, on either side and in either byte.
    {10, 10, {100, 100, 50}, {{109, 91, 52}}, {105, 96, 51}},
    {10, 10, {100, 100, 50}, {{110, 100, 52}}, {100, 100, 50}},
    {10, 10, {100, 100, 50}, {{90, 100, 52}}, {100, 100, 50}},
    {10, 10, {100, 100, 50}, {{100, 110, 52}}, {100, 100, 50}},
    {10, 10, {100, 100, 50}, {{100, 90, 52}}, {100, 100, 50}},
    {1, 10, {100, 100, 50}, {{100, 100, 53}}, {100, 100, 52}},
    {0, 10, {100, 100, 50}, {{100, 100, 53}}, {100, 100, 50}},
    // No wrap below 0 or above 255.
    {10, 10, {3, 252, 1}, {{0, 255, 4}}, {2, 254, 3}},
    {10, 10, {3, 252, 1}, {{252, 3, 0}}, {3, 252, 1}},
    {255, 255, {0, 255, 0}, {{254, 1, 254}}, {127, 128, 127}},
    // Luma that would move by threshY or more stays, while the chroma is merged.
    {10, 5, {100, 100, 50}, {{102, 98, 58}}, {101, 99, 54}},
    {10, 5, {100, 100, 50}, {{102, 98, 59}}, {101, 99, 50}},
    {10, 5, {100, 100, 50}, {{102, 98, 41}}, {101, 99, 46}},
    {10, 5, {100, 100, 50}, {{102, 98, 40}}, {101, 99, 50}},
    {10, 0, {100, 100, 50}, {{102, 98, 50}}, {101, 99, 50}},
    // Rounding by the number of frames that agree: +1 of two, +2 and the reference twice of three,
    // +1 of four.
    {10, 10, {100, 100, 50}, {{101, 99, 51}}, {101, 100, 51}},
    {10, 10, {100, 100, 50}, {{101, 100, 51}, {101, 101, 51}}, {101, 100, 51}},
    {10, 10, {100, 100, 50}, {{101, 99, 51}, {200, 100, 99}}, {101, 100, 51}},
    {10, 10, {100, 100, 50}, {{101, 101, 51}, {101, 100, 51}, {0, 0, 99}}, {101, 100, 51}},
    {10, 10, {100, 100, 50}, {{100, 101, 51}, {101, 101, 51}, {101, 101, 51}}, {100, 101, 51}},
    {10, 10, {100, 100, 50}, {{0, 0, 0}, {100, 0, 0}, {0, 100, 0}}, {100, 100, 50}},
    // Chroma alone; luma plays no part.
    {5, 0, {100, 100, 50}, {{103, 96, 52}}, {102, 98, 50}, true},
    {5, 255, {100, 100, 50}, {{101, 100, 0}, {101, 101, 99}}, {101, 100, 50}, true},
};

// Each case fills a row, so that it passes through the vectors and through what remains of them.
TEST(Denoise3dStrip, MergesAPositionByThresholdsAndRounding) {
  constexpr int kWidth = 3 * 32 + 14;
  constexpr uint8_t kRest = 77;  // luma samples that take no part in the decision
  for (const PositionCase& c : kPositions) {
    for (const Build build : builds_here()) {
      SCOPED_TRACE(::testing::Message() << build_name(build) << " case " << &c - kPositions);
      const UseBuild use(build);
      Frames frames(kWidth, 2, kWidth, kWidth, 0);
      frames.param.frame_num = static_cast<uint8_t>(c.others.size() + 1);
      frames.param.thresh_tune = 1;
      frames.param.switch_a = !c.chroma_only;
      frames.param.thresh = c.thresh;
      frames.param.threshY = c.threshY;
      for (int k = 0; k < frames.param.frame_num; ++k) {
        const Yuv& yuv = k == 0 ? c.reference : c.others[static_cast<size_t>(k) - 1];
        frames.fill(k, kRest, 0);
        for (int b = 0; b < kWidth; b += 2) {
          frames.chroma(k, 0, b) = static_cast<uint8_t>(yuv.u);
          frames.chroma(k, 0, b + 1) = static_cast<uint8_t>(yuv.v);
          frames.luma(k, 0, b) = static_cast<uint8_t>(yuv.y);
        }
      }
      run_strip(frames.param, 3);
      const int rest = c.merged.y == c.reference.y ? kRest : c.merged.y;
      for (int b = 0; b < kWidth; b += 2) {
        ASSERT_EQ(frames.chroma(0, 0, b), c.merged.u) << b;
        ASSERT_EQ(frames.chroma(0, 0, b + 1), c.merged.v) << b;
        ASSERT_EQ(frames.luma(0, 0, b), c.merged.y) << b;
        ASSERT_EQ(frames.luma(0, 0, b + 1), rest) << b;
        ASSERT_EQ(frames.luma(0, 1, b), rest) << b;
        ASSERT_EQ(frames.luma(0, 1, b + 1), rest) << b;
      }
    }
  }
}

// Letters, one a strip: what a merge of frames that agree everywhere changed.
char what_changed(const Frames& before, const Frames& after, int strip) {
  constexpr int kCentre = 32;  // of 64 columns; the edge sections' first row leaves it alone
  const auto changed = [&](auto plane, int row, int column) {
    return (before.*plane)(0, row, column) != (after.*plane)(0, row, column);
  };
  const bool chroma_edge = changed(&Frames::chroma, 4 * strip, 0);
  const bool chroma_centre = changed(&Frames::chroma, 4 * strip, kCentre);
  const bool luma_edge = changed(&Frames::luma, 8 * strip, 0);
  const bool luma_centre = changed(&Frames::luma, 8 * strip, kCentre);
  const int set = chroma_edge << 3 | chroma_centre << 2 | luma_edge << 1 | luma_centre;
  switch (set) {
    case 0b0000:
      return '.';
    case 0b1111:
      return 'W';  // whole frame
    case 0b1100:
      return 'C';  // chroma alone
    case 0b1010:
      return 'E';  // edges
    case 0b0010:
      return 'L';  // edges, luma alone
  }
  return '?';
}

Frames after_strip(const Frames& before, int strip) {
  Frames after = before;
  run_strip(after.param, strip);
  return after;
}

std::vector<LogLine> geometry_line(const std::string& variant, const T_3DYuvDenoiseParam& p,
                                   int jump) {
  std::ostringstream text;
  text << variant << ", width:" << p.width << ", height:" << p.height
       << ", UVStride:" << p.uv_stride << ", YStride:" << p.y_stride << ", jumpUVLen:" << jump
       << ',';
  return {{kLogError, kTagProcessing, text.str()}};
}

struct ModeCase {
  std::vector<int> frame_nums;
  uint8_t a, b, c, tune, gain, thresh, threshY;
  const char* changed;
  const char* smoothed;     // with switch_d
  const char* logged = "";  // with 4 frames
};

const ModeCase kModes[] = {
    // frames a  b  c tune gain thresholds
    {{2, 3, 4}, 1, 0, 0, 1, 0, 10, 10, "WWWW", "ssss"},
    {{2, 3, 4}, 255, 0, 1, 9, 200, 10, 10, "WWWW", "ssss"},  // a before c
    {{2, 3, 4}, 1, 0, 0, 1, 0, 10, 0, "CCCC", "ssss"},       // no luma is within 0
    {{2, 3, 4}, 1, 0, 0, 1, 0, 0, 10, "....", "ssss"},       // nothing agrees, the task goes on
    {{2, 3, 4}, 1, 0, 0, 1, 0, 1, 2, "....", "ssss"},
    {{2, 3, 4}, 0, 1, 0, 1, 15, 10, 10, "E..E", "s..s", "edge4"},
    {{2, 3, 4}, 1, 8, 1, 1, 15, 0, 10, "E..E", "s..s", "edge4"},  // b before a and c
    {{2, 3, 4}, 0, 1, 0, 1, 15, 10, 1, "....", "...."},
    {{2, 3, 4}, 0, 0, 1, 1, 15, 10, 10, "L..L", "s..s", "edge4"},
    {{2, 3, 4}, 0, 0, 1, 1, 15, 10, 1, "....", "...."},
    {{2, 3, 4}, 1, 1, 1, 1, 16, 10, 10, "CCCC", "ssss", "inner4"},  // gain too high for edges
    {{2, 3, 4}, 0, 0, 1, 1, 16, 10, 10, "CCCC", "ssss", "inner4"},
    {{2, 3, 4}, 0, 0, 0, 1, 0, 10, 0, "CCCC", "ssss", "inner4"},
    {{2, 3, 4}, 0, 0, 0, 1, 0, 1, 10, "....", "...."},
    {{2, 3, 4}, 1, 0, 0, 0, 0, 10, 10, "....", "...."},  // nothing without thresh_tune
    {{2, 3, 4}, 0, 1, 0, 0, 0, 10, 10, "....", "...."},
    {{2, 3, 4}, 0, 0, 1, 0, 0, 10, 10, "....", "...."},
    {{1}, 1, 1, 1, 0, 0, 2, 0, "....", "ssss"},
    {{1}, 0, 0, 0, 1, 0, 0, 2, "....", "ssss"},
    {{1, 2, 3, 4}, 1, 0, 0, 1, 0, 1, 1, "....", "...."},
    {{0, 5, 255}, 1, 0, 0, 1, 0, 10, 10, "....", "...."},
};

TEST(Denoise3dStrip, ChoosesWhatToMergeAndWhetherToSmooth) {
  for (const ModeCase& c : kModes) {
    for (const int frame_num : c.frame_nums) {
      // Strides that keep the drifting sections inside their strip.
      Frames frames(64, 32, 400, 400, 0);
      T_3DYuvDenoiseParam& p = frames.param;
      p.frame_num = static_cast<uint8_t>(frame_num);
      p.switch_a = c.a;
      p.switch_b = c.b;
      p.switch_c = c.c;
      p.thresh_tune = c.tune;
      p.gain = c.gain;
      p.thresh = c.thresh;
      p.threshY = c.threshY;
      for (int k = 0; k < 4; ++k) frames.fill(k, k == 0 ? 50 : 54, k == 0 ? 100 : 104);
      // A pair between the sections that only the smoothing levels.
      for (int row = 1; row < 16; row += 4) frames.chroma(0, row, 40) = 108;

      std::string changed;
      std::string smoothed;
      for (int strip = 0; strip < 4; ++strip) {
        SCOPED_TRACE(::testing::Message() << "strip " << strip << ": " << p);
        take_log();
        const Frames merged = after_strip(frames, strip);
        const bool logs = frame_num == 4 && *c.logged && c.changed[strip] != '.';
        EXPECT_EQ(take_log(), logs ? geometry_line(c.logged, p, 336) : std::vector<LogLine>{});
        changed += what_changed(frames, merged, strip);

        p.switch_d = 1;
        const Frames levelled = after_strip(frames, strip);
        p.switch_d = 0;
        const int row = 4 * strip + 1;
        smoothed += levelled.chroma(0, row, 40) == levelled.chroma(0, row, 42) ? 's' : '.';
      }
      EXPECT_EQ(changed, c.changed) << p;
      EXPECT_EQ(smoothed, c.smoothed) << p;
    }
  }
}

TEST(Denoise3dStrip, LogsItsGeometryAlsoWithoutRows) {
  Frames frames(8, 4, 16, 65536 + 10, 0);
  T_3DYuvDenoiseParam& p = frames.param;
  p.frame_num = 4;
  p.thresh_tune = 1;
  p.thresh = p.threshY = 10;
  for (int k = 0; k < 4; ++k) frames.fill(k, 0, 0);
  for (const uint8_t edges : {0, 1}) {
    p.switch_b = edges;
    for (const int strip : {0, 3}) {
      take_log();
      run_strip(p, strip);
      EXPECT_EQ(take_log(), geometry_line(edges ? "edge4" : "inner4", p, 2));
    }
  }
}

TEST(Denoise3dStrip, DoesNothingForNull) {
  Frames frames(8, 8, 8, 8, 0);
  frames.param.frame_num = frames.param.switch_d = 1;
  frames.param.thresh = 10;
  frames.fill(0, 7, 7);
  frames.chroma(0, 0, 0) = 9;
  const Frames before = frames;
  const int32_t strip = 0;
  zavri_mp_3D_YUV_denoise_inner(nullptr, &frames.param, nullptr);
  zavri_mp_3D_YUV_denoise_inner(&strip, nullptr, nullptr);
  EXPECT_EQ(frames.bytes(0), before.bytes(0));
}

}  // namespace
}  // namespace zavri::testing
