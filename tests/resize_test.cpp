#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>
#include <thread>

#include "include/zavricustpro.h"
#include "resize/chroma_channels.h"
#include "tests/support/allocations.h"
#include "tests/support/log_capture.h"
#include "tests/support/samples.h"
#include "tests/support/scaler_calls.h"
#include "tests/support/use_build.h"

namespace zavri::testing {
namespace {

const LogLine kBegin{6, "ZVC", "zavri-mp::resize begin"};
const LogLine kEnd{6, "ZVC", "zavri-mp::resize end"};
const LogLine kParameterError{6, "ZVC", "zavri-mp::resize para error !!!"};
const LogLine kDownScale{6, "ZVC", "zavri-mp::down scale. sorry, It is not surpport now."};

// The lines with tag ZVC: the pool's own are not looked at.
std::vector<LogLine> take_lines() {
  std::vector<LogLine> lines = take_log();
  lines.erase(std::remove_if(lines.begin(), lines.end(),
                             [](const LogLine& line) { return line.tag != "ZVC"; }),
              lines.end());
  return lines;
}

struct Geometry {
  uint16_t width, height, stride;
};

// Both frames and the record that describes them, planes of the sizes that the record needs.
class Resize {
 public:
  T_ResizeParam param{};
  std::vector<uint8_t> src_y, src_uv, dst_y, dst_uv;

  Resize(Geometry src, Geometry dst, uint16_t mode = 0) {
    Random random(1);
    param.scale_mode = mode;
    param.src_width = src.width;
    param.src_height = src.height;
    param.src_stride = src.stride;
    param.dst_width = dst.width;
    param.dst_height = dst.height;
    param.dst_stride = dst.stride;
    src_y = samples(random, Style::kUniform, luma_bytes(src));
    src_uv = samples(random, Style::kUniform, luma_bytes(src) / 4 * 2);
    dst_y.assign(luma_bytes(dst), 7);
    dst_uv.assign(luma_bytes(dst) / 4 * 2, 7);
    param.src_y = src_y.data();
    param.src_uv = src_uv.data();
    param.dst_y = dst_y.data();
    param.dst_uv = dst_uv.data();
  }

 private:
  static size_t luma_bytes(Geometry g) {
    // A wrapped last strip begins two rows after the frame.
    const size_t rows = g.height == 4 || g.height == 5 ? 6 + 65536 : g.height;
    return rows * g.stride;
  }
};

TEST(ResizeEntry, TestsInOrderAndSaysWhy) {
  struct Case {
    const char* what;
    void (*change)(T_ResizeParam&);
    uint32_t code;
    size_t calls;
  };
  constexpr Case kCases[] = {
      {"as it is", [](T_ResizeParam&) {}, 0, 12},
      {"odd heights", [](T_ResizeParam& p) { p.src_height = p.dst_height = 7; }, 0, 12},
      {"unknown mode", [](T_ResizeParam& p) { p.scale_mode = 7; }, 0, 0},
      {"no src_y", [](T_ResizeParam& p) { p.src_y = nullptr; }, 2, 0},
      {"no src_uv", [](T_ResizeParam& p) { p.src_uv = nullptr; }, 2, 0},
      {"no dst_y", [](T_ResizeParam& p) { p.dst_y = nullptr; }, 2, 0},
      {"no dst_uv", [](T_ResizeParam& p) { p.dst_uv = nullptr; }, 2, 0},
      {"src_width 0", [](T_ResizeParam& p) { p.src_width = 0; }, 2, 0},
      {"src_height 0", [](T_ResizeParam& p) { p.src_height = 0; }, 2, 0},
      {"src_stride 0", [](T_ResizeParam& p) { p.src_stride = 0; }, 2, 0},
      {"dst_width 0", [](T_ResizeParam& p) { p.dst_width = 0; }, 2, 0},
      {"dst_height 0", [](T_ResizeParam& p) { p.dst_height = 0; }, 2, 0},
      {"dst_stride 0", [](T_ResizeParam& p) { p.dst_stride = 0; }, 2, 0},
      {"odd src_width", [](T_ResizeParam& p) { p.src_width--; }, 2, 0},
      {"odd src_stride", [](T_ResizeParam& p) { p.src_stride--; }, 2, 0},
      {"odd dst_width", [](T_ResizeParam& p) { p.dst_width--; }, 2, 0},
      {"odd dst_stride", [](T_ResizeParam& p) { p.dst_stride--; }, 2, 0},
      {"odd and smaller", [](T_ResizeParam& p) { p.dst_width = 7; }, 2, 0},
      {"narrower", [](T_ResizeParam& p) { p.dst_width = p.src_width - 2; }, 1, 0},
      {"lower", [](T_ResizeParam& p) { p.dst_height = p.src_height - 1; }, 1, 0},
      {"less padding", [](T_ResizeParam& p) { p.src_stride = p.dst_stride + 2; }, 1, 0},
  };
  for (const Case& c : kCases) {
    Resize resize({16, 16, 16}, {32, 32, 32});
    c.change(resize.param);
    take_lines();
    const RecordScalerCalls record;
    EXPECT_EQ(zavri_mp_resize_process(&resize.param), c.code) << c.what;
    const LogLine& second = c.code == 0 ? kEnd : c.code == 1 ? kDownScale : kParameterError;
    EXPECT_EQ(take_lines(), (std::vector<LogLine>{kBegin, second})) << c.what;
    EXPECT_EQ(record.calls().size(), c.calls) << c.what;
  }
  EXPECT_EQ(zavri_mp_resize_process(nullptr), 2u);
  EXPECT_EQ(take_lines(), (std::vector<LogLine>{kBegin, kParameterError}));
}

struct StripCase {
  Geometry src, dst;
  std::array<uint32_t, 4> src_rows, dst_rows;  // of the strips
};

const StripCase kStripCases[] = {
    {{1920, 1080, 1920}, {3840, 2160, 3840}, {270, 270, 270, 270}, {540, 540, 540, 540}},
    {{64, 2988, 64}, {64, 2988, 64}, {748, 748, 748, 744}, {748, 748, 748, 744}},
    {{16, 6, 16}, {16, 8, 16}, {2, 2, 2, 0}, {2, 2, 2, 2}},
    {{16, 7, 16}, {48, 15, 48}, {2, 2, 2, 1}, {4, 4, 4, 3}},
    {{16, 3, 16}, {16, 9, 16}, {0, 0, 0, 3}, {2, 2, 2, 3}},
    {{20, 64, 32}, {50, 100, 66}, {16, 16, 16, 16}, {26, 26, 26, 22}},
    {{8, 4, 8}, {8, 12, 8}, {2, 2, 2, 65534}, {4, 4, 4, 0}},
    {{8, 5, 8}, {8, 5, 8}, {2, 2, 2, 65535}, {2, 2, 2, 65535}},
};

ScalerCall expected_call(const StripCase& c, int strip, int plane, uint16_t mode) {
  const uint32_t part = plane == 0 ? 1 : 2;  // chroma channels are half as wide and high
  ScalerCall call{};
  call.function = mode == 1 ? ScalerCall::kScale : ScalerCall::kScaleUpPoly;
  call.interpolation = mode == 1 ? 1 : -1;
  call.src_width = c.src.width / part;
  call.src_height = c.src_rows[strip] / part;
  call.src_stride = c.src.stride / part;
  call.dst_width = c.dst.width / part;
  call.dst_height = c.dst_rows[strip] / part;
  call.dst_stride = c.dst.stride / part;
  return call;
}

TEST(ResizeEntry, ScalesEveryStripPlaneByPlane) {
  for (const StripCase& c : kStripCases) {
    for (const uint16_t mode : {uint16_t{0}, uint16_t{1}}) {
      SCOPED_TRACE(::testing::Message()
                   << c.src.height << " to " << c.dst.height << " mode " << mode);
      Resize resize(c.src, c.dst, mode);
      const RecordScalerCalls record;
      ASSERT_EQ(zavri_mp_resize_process(&resize.param), 0u);
      ASSERT_EQ(record.calls().size(), 12u);
      // A thread works its strips one after the other.
      std::map<std::thread::id, std::vector<ScalerCall>> of_thread;
      for (const ScalerCall& call : record.calls()) of_thread[call.thread].push_back(call);
      std::array<int, 4> seen{};
      for (const auto& [thread, calls] : of_thread) {
        ASSERT_EQ(calls.size() % 3, 0u);
        for (size_t i = 0; i < calls.size(); i += 3) {
          for (int strip = 0; strip < 4; ++strip) {
            const uint32_t src_offset = strip * c.src_rows[0] * c.src.stride;
            const uint32_t dst_offset = strip * c.dst_rows[0] * c.dst.stride;
            if (calls[i].src != resize.param.src_y + src_offset ||
                calls[i].dst != resize.param.dst_y + dst_offset) {
              continue;
            }
            seen[strip]++;
            for (int plane = 0; plane < 3; ++plane) {
              EXPECT_EQ(calls[i + plane], expected_call(c, strip, plane, mode));
            }
            break;
          }
        }
      }
      EXPECT_EQ(seen, (std::array<int, 4>{1, 1, 1, 1}));
    }
  }
}

// The recording scaler inverts bytes; whole chroma rows pass through it, padding included.
TEST(ResizeEntry, SplitsAndMergesWholeChromaRows) {
  for (const Geometry g : {Geometry{16, 16, 16}, Geometry{20, 64, 26}, Geometry{16, 23, 18}}) {
    for (const Build build : builds_here()) {
      const UseBuild use(build);
      Resize resize(g, g, 1);
      std::vector<uint8_t> expected = resize.src_uv;
      for (uint8_t& byte : expected) byte = static_cast<uint8_t>(~byte);
      const RecordScalerCalls record;
      ASSERT_EQ(zavri_mp_resize_process(&resize.param), 0u);
      // An odd last strip has half a row more than the scaler is told of.
      const size_t scaled = size_t{g.height / 2u} * g.stride;
      expected.resize(scaled);
      resize.dst_uv.resize(scaled);
      EXPECT_EQ(resize.dst_uv, expected) << build_name(build) << ' ' << g.height;
    }
  }
}

// Whatever the scratch holds, it is hardly full of one value.
TEST(ResizeStrip, UnknownModeLeavesLumaAndWritesScratchToChroma) {
  Resize resize({64, 64, 64}, {128, 128, 128}, 2);
  constexpr uint8_t kUntouched = 0xa7;
  std::fill(resize.dst_uv.begin(), resize.dst_uv.end(), kUntouched);
  const RecordScalerCalls record;
  zavri_mp_yuv_resize_inner(&resize.param, nullptr, nullptr);
  EXPECT_TRUE(record.calls().empty());
  EXPECT_EQ(resize.dst_y, std::vector<uint8_t>(resize.dst_y.size(), 7));
  const auto untouched = std::count(resize.dst_uv.begin(), resize.dst_uv.end(), kUntouched);
  EXPECT_LT(untouched, static_cast<ptrdiff_t>(resize.dst_uv.size() / 4));
}

TEST(ResizeStrip, ScratchIsFourBlocksEvenForAnEmptyStrip) {
  for (const uint16_t rows : {0, 7, 8}) {
    Resize resize({16, 8, 18}, {32, 16, 32});
    resize.param.src_height = rows;
    const RecordScalerCalls record;
    const WatchAllocations watch;
    zavri_mp_yuv_resize_inner(&resize.param, nullptr, nullptr);
    const size_t of_source = 1 + 18 * rows / 4;
    const size_t of_target = 1 + 32 * 16 / 4;
    EXPECT_EQ(watch.sizes, (std::vector<size_t>{of_source, of_source, of_target, of_target}));
    EXPECT_EQ(watch.freed, 4u);
    EXPECT_EQ(record.calls().size(), 3u);
  }
}

// With the true scaler: strips do not depend on one another, nor two calls at a time.
TEST(ResizeEntry, TwoCallersGetWhatTheStripsGiveInTurn) {
  for (const uint16_t mode : {uint16_t{0}, uint16_t{1}}) {
    Resize expected({98, 64, 100}, {130, 128, 142}, mode);
    for (int k = 0; k < 4; ++k) {
      T_ResizeParam strip = expected.param;
      strip.src_height = 16;
      strip.dst_height = 32;
      strip.src_y += k * 16 * 100;
      strip.src_uv += k * 8 * 100;
      strip.dst_y += k * 32 * 142;
      strip.dst_uv += k * 16 * 142;
      zavri_mp_yuv_resize_inner(&strip, nullptr, nullptr);
    }
    EXPECT_NE(expected.dst_y[0], 7);
    const auto visible = [](const std::vector<uint8_t>& plane) {
      std::vector<uint8_t> bytes;
      for (size_t i = 0; i < plane.size(); ++i) {
        if (i % 142 < 130) bytes.push_back(plane[i]);
      }
      return bytes;
    };
    const auto run = [&] {
      for (int round = 0; round < 20; ++round) {
        Resize actual({98, 64, 100}, {130, 128, 142}, mode);
        zavri_mp_resize_process(&actual.param);
        EXPECT_EQ(actual.dst_y, expected.dst_y);
        EXPECT_EQ(visible(actual.dst_uv), visible(expected.dst_uv));
      }
    };
    std::thread other(run);
    run();
    other.join();
  }
}

TEST(ChromaChannels, EveryBuildEqualsThePlainLoop) {
  Random random(1);
  constexpr size_t kMost = 3 * 32 + 1;
  constexpr size_t kRoom = kMost + 3;
  for (size_t pairs = 0; pairs <= kMost; ++pairs) {
    for (int round = 0; round < 8; ++round) {
      // Apart in the first rounds, then anywhere, overlapping in every way.
      size_t at[3] = {random() % 3, 2 * kRoom + random() % 3, 3 * kRoom + random() % 3};
      if (round >= 4) {
        for (size_t& offset : at) offset = random() % (2 * kRoom);
      }
      const std::vector<uint8_t> before = samples(random, Style::kUniform, 4 * kRoom);
      const auto run = [&](Build build, bool split) {
        std::vector<uint8_t> bytes = before;
        uint8_t* const p = bytes.data();
        if (split) {
          channel_kernels(build).split(p + at[0], pairs, p + at[1], p + at[2]);
        } else {
          channel_kernels(build).merge(p + at[1], p + at[2], pairs, p + at[0]);
        }
        return bytes;
      };
      for (const bool split : {true, false}) {
        const std::vector<uint8_t> expected = run(Build::kPlain, split);
        for (const Build build : builds_here()) {
          EXPECT_EQ(run(build, split), expected)
              << build_name(build) << (split ? " split " : " merge ") << pairs << " at " << at[0]
              << ' ' << at[1] << ' ' << at[2];
        }
      }
    }
  }
}

}  // namespace
}  // namespace zavri::testing
