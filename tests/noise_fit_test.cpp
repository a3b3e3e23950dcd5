#include "tools/sensor/noise_fit.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/pictures.h"
#include "tools/sensor/burst.h"

namespace zavri::tools {
namespace {

void expect_line(const NoiseLine& line, const NoiseLine& truth, double tolerance) {
  for (const int level : {48, 128, 208}) {
    EXPECT_NEAR(line.variance(level), truth.variance(level), tolerance * truth.variance(level))
        << "at level " << level;
  }
}

// The scene has texture in half of its parts. With hand shake, flicker and an object, that half
// must not count as noise, nor must what moves.
TEST(NoiseFit, FindsTheProfileThatTheFramesWereMadeWith) {
  const NoiseProfile profile = {{{0.3, 5}, {0.08, 2}, {0.05, 4}}};
  const Picture scene = half_textured(960, 640);
  const Changes still;
  Changes moving;
  moving.shake = 1.5;
  moving.object = true;
  moving.flicker = 3;
  const struct {
    const char* what;
    Changes changes;
    int frames;
  } kCases[] = {
      {"a still burst", still, 4}, {"one frame", still, 1}, {"a moving burst", moving, 4}};
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    BurstSettings settings;
    settings.profile = profile;
    settings.changes = c.changes;
    settings.frames = c.frames;
    const NoiseFit fit = fit_noise(make_burst(scene, settings).noisy);
    for (size_t plane = 0; plane < profile.size(); ++plane) {
      SCOPED_TRACE(kPlaneNames[plane]);
      expect_line(fit[plane].line, profile[plane], 0.05);
    }
  }
}

}  // namespace
}  // namespace zavri::tools
