#include "tools/sensor/scene.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/pictures.h"
#include "tools/sensor/burst.h"
#include "tools/sensor/shift.h"

namespace zavri::tools {
namespace {

TEST(Scene, MaskCoversAllThatChangesWhereAnObjectMoves) {
  Changes changes;
  changes.object = true;
  const Scene scene(half_textured(320, 240), changes);
  const std::vector<View> views = scene.views(4, 1);
  const Mask mask = scene.moving(views);
  const Frame first = to_frame(scene.seen(views[0]));
  int changed = 0;
  for (const View& view : views) {
    const Frame frame = to_frame(scene.seen(view));
    for (int y = 0; y < frame.height(); ++y) {
      for (int x = 0; x < frame.width(); ++x) {
        const bool luma = frame.luma_row(y)[x] != first.luma_row(y)[x];
        const bool chroma = frame.chroma_row(y / 2)[x] != first.chroma_row(y / 2)[x];
        ASSERT_TRUE(!luma || mask.has(x, y)) << x << ',' << y;
        ASSERT_TRUE(!chroma || mask.touches(x & ~1, y & ~1, 2, 2)) << x << ',' << y;
        changed += luma;
      }
    }
  }
  // Three steps of a third of its size uncover about as much as the object covers.
  EXPECT_GT(changed, 3000);
  int masked = 0;
  for (int y = 0; y < mask.height(); ++y) {
    for (int x = 0; x < mask.width(); ++x) masked += mask.has(x, y);
  }
  EXPECT_LT(masked, 320 * 240 / 10);
}

// A pattern far from the finest moves by its phase and keeps its contrast, wherever it stops.
TEST(Shift, MovesFinePatternsBetweenPixelsWithoutBlur) {
  constexpr double kPeriod = 2.5;  // of the finest's 2 pixels
  const auto wave = [](double x) { return 128 + 100 * std::cos(2 * M_PI * x / kPeriod); };
  Picture picture(64, 64);
  const auto fill = [&](double dx, double dy, Picture& to) {
    for (int y = 0; y < 64; ++y) {
      for (int x = 0; x < 64; ++x) {
        uint8_t* const rgb = &to.rgb[3 * static_cast<size_t>(64 * y + x)];
        rgb[0] = static_cast<uint8_t>(std::lround(wave(x - dx)));
        rgb[1] = static_cast<uint8_t>(std::lround(wave(y - dy)));
      }
    }
  };
  fill(0, 0, picture);
  for (const auto& [dx, dy] : {std::pair(0.5, 0.0), {-3.25, 1.5}, {2.0, -1.0}}) {
    SCOPED_TRACE(::testing::Message() << dx << ',' << dy);
    Picture expected(64, 64);
    fill(dx, dy, expected);
    const Picture moved = shifted(picture, dx, dy);
    for (int y = 16; y < 48; ++y) {
      for (int x = 16; x < 48; ++x) {
        for (int c : {0, 1}) {
          const size_t at = 3 * static_cast<size_t>(64 * y + x) + static_cast<size_t>(c);
          ASSERT_NEAR(moved.rgb[at], expected.rgb[at], 2) << x << ',' << y;
        }
      }
    }
  }
}

TEST(Burst, RepeatsWithItsSeedAndShakesFromTheSecondFrameOn) {
  BurstSettings settings;
  settings.changes.shake = 2;
  settings.changes.flicker = 5;
  settings.frames = 3;
  const Picture scene = half_textured(64, 48);
  const BurstFrames burst = make_burst(scene, settings);
  const BurstFrames again = make_burst(scene, settings);
  EXPECT_EQ(burst.clean.buffer(), to_frame(scene).buffer());
  EXPECT_EQ(burst.views[0].x, 0);
  EXPECT_EQ(burst.views[0].light, 1);
  for (size_t k = 0; k < 3; ++k) EXPECT_EQ(burst.noisy[k].buffer(), again.noisy[k].buffer());
  EXPECT_NE(burst.views[1].x, burst.views[2].x);
  EXPECT_NE(2 * burst.views[1].y, burst.views[2].y);  // no step is that before it
  settings.seed = 2;
  EXPECT_NE(make_burst(scene, settings).views[1].x, burst.views[1].x);
}

}  // namespace
}  // namespace zavri::tools
