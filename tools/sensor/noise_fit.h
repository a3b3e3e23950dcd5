#pragma once

#include <array>
#include <vector>

#include "tools/images/frame.h"
#include "tools/sensor/noise_profile.h"

namespace zavri::tools {

// Holds what was measured about one level.
struct NoiseLevel {
  double level = 0;
  double variance = 0;  // without that of rounding to 8 bits
  int blocks = 0;       // that agreed on it
  // The doubt is 0 where the blocks differ as chance has it. More says that texture or motion is
  // left in them, and that the variance may be too high by about this share.
  double doubt = 0;
};

struct PlaneNoise {
  NoiseLine line;
  std::vector<NoiseLevel> levels;  // ascending

  // Returns the variance as measured, between the levels by interpolation.
  double variance(double level) const;
};

// A fit holds the noise of Y, U and V.
using NoiseFit = std::array<PlaneNoise, 3>;

// Fits the noise of frames of one size: that of several by how each differs from the next, that of
// one by its flat parts, where the noise must be white. Blocks that move or have texture are left
// out, and so are levels at which samples reach 0 or 255. Throws an Error if too little remains.
PlaneNoise fit_plane_noise(const std::vector<Frame>& frames, int plane);
NoiseFit fit_noise(const std::vector<Frame>& frames);

NoiseProfile profile_of(const NoiseFit& fit);

}  // namespace zavri::tools
