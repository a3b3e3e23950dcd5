#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>
#include <thread>

#include "include/zavricustpro.h"
#include "interface/heavy_operation.h"
#include "tests/support/allocations.h"
#include "tests/support/log_capture.h"
#include "tests/support/samples.h"
#include "tests/support/system_faults.h"
#include "tests/support/use_build.h"
#include "tests/support/vendor_calls.h"

namespace zavri::testing {
namespace {

const LogLine kBegin{6, "ZVC", "zavri-mp::resize begin"};
const LogLine kParameterError{6, "ZVC", "zavri-mp::resize para error !!!"};
const LogLine kDownScale{6, "ZVC", "zavri-mp::down scale. sorry, It is not surpport now."};

// A call that creates the pool logs these lines.
const std::vector<LogLine> kDone = {kBegin,
                                    {0, kWatchTag, "lock"},
                                    {2, "Defog", "Constructed ThreadPool of size 4."},
                                    {2, "Defog", "4 threads created by the thread pool"},
                                    {0, kWatchTag, "unlock"},
                                    {6, "ZVC", "zavri-mp::resize end"},
                                    {0, kWatchTag, "destroy condition"}};

struct Geometry {
  uint16_t width, height, stride;
};

// Holds both frames and the record that describes them; planes have the sizes that the record
// needs.
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
    src_uv = samples(random, Style::kUniform, chroma_bytes(src));
    dst_y.assign(luma_bytes(dst), 7);
    dst_uv.assign(chroma_bytes(dst), 7);
    param.src_y = src_y.data();
    param.src_uv = src_uv.data();
    param.dst_y = dst_y.data();
    param.dst_uv = dst_uv.data();
  }

 private:
  // A wrapped last strip begins two rows after the frame.
  static size_t rows(Geometry g) { return g.height == 4 || g.height == 5 ? 6 + 65536 : g.height; }
  // The recording scaler takes whole rows.
  static size_t luma_bytes(Geometry g) { return rows(g) * g.stride; }
  static size_t chroma_bytes(Geometry g) {
    return rows(g) == g.height ? zavri_room_resize_chroma(g.height, g.stride) : luma_bytes(g) / 2;
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
      {"wide", [](T_ResizeParam& p) { p.dst_width = 0x8000; }, 0, 12},
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
    HALThreadPoolDestroy();
    take_log();
    const WatchMutex watch(&g_mp_process_lock);
    take_scaler_calls();
    EXPECT_EQ(zavri_mp_resize_process(&resize.param), c.code) << c.what;
    EXPECT_EQ(take_log(), c.code == 0   ? kDone
                          : c.code == 1 ? (std::vector<LogLine>{kBegin, kDownScale})
                                        : (std::vector<LogLine>{kBegin, kParameterError}))
        << c.what;
    EXPECT_EQ(take_scaler_calls().size(), c.calls) << c.what;
  }
  EXPECT_EQ(zavri_mp_resize_process(nullptr), 2u);
  EXPECT_EQ(take_log(), (std::vector<LogLine>{kBegin, kParameterError}));
}

struct StripCase {
  Geometry src, dst;
  std::array<uint32_t, 4> src_rows, dst_rows;  // one for each strip
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
      take_scaler_calls();
      ASSERT_EQ(zavri_mp_resize_process(&resize.param), 0u);
      const std::vector<ScalerCall> all = take_scaler_calls();
      ASSERT_EQ(all.size(), 12u);
      // A thread works its strips one after the other.
      std::map<std::thread::id, std::vector<ScalerCall>> of_thread;
      for (const ScalerCall& call : all) of_thread[call.thread].push_back(call);
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
              ScalerCall expected = expected_call(c, strip, plane, mode);
              if (expected.src_height > 0) {
                expected.first = plane == 0 ? resize.src_y[src_offset]
                                            : resize.src_uv[src_offset / 2 + plane - 1];
              }
              EXPECT_EQ(calls[i + plane], expected);
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
    Resize resize(g, g, 1);
    std::vector<uint8_t> expected = resize.src_uv;
    for (uint8_t& byte : expected) byte = static_cast<uint8_t>(~byte);
    ASSERT_EQ(zavri_mp_resize_process(&resize.param), 0u);
    // An odd last strip has half a row more than the scaler is told of.
    const size_t scaled = size_t{g.height / 2u} * g.stride;
    expected.resize(scaled);
    resize.dst_uv.resize(scaled);
    EXPECT_EQ(resize.dst_uv, expected) << g.height;
  }
}

TEST(ResizeStrip, UnknownModeLeavesLumaAndWritesScratchToChroma) {
  Resize resize({64, 64, 64}, {128, 128, 128}, 2);
  take_scaler_calls();
  const WatchAllocations watch;
  zavri_mp_yuv_resize_inner(&resize.param, nullptr, nullptr);
  EXPECT_TRUE(take_scaler_calls().empty());
  EXPECT_EQ(resize.dst_y, std::vector<uint8_t>(resize.dst_y.size(), 7));
  EXPECT_EQ(resize.dst_uv, std::vector<uint8_t>(resize.dst_uv.size(), WatchAllocations::kFill));
}

TEST(ResizeStrip, ScratchIsFourBlocksEvenForAnEmptyStrip) {
  for (const uint16_t rows : {0, 7, 8}) {
    Resize resize({16, 8, 18}, {32, 16, 32});
    resize.param.src_height = rows;
    take_scaler_calls();
    const WatchAllocations watch;
    zavri_mp_yuv_resize_inner(&resize.param, nullptr, nullptr);
    const size_t of_source = 1 + 18 * rows / 4;
    const size_t of_target = 1 + 32 * 16 / 4;
    EXPECT_EQ(watch.sizes, (std::vector<size_t>{of_source, of_source, of_target, of_target}));
    EXPECT_EQ(watch.freed, 4u);
    EXPECT_EQ(take_scaler_calls().size(), 3u);
  }
}

}  // namespace
}  // namespace zavri::testing
