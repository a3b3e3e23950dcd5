#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>

#include "tools/images/frame.h"

namespace zavri::tools {

// The variance of noise is a line over the level. A plane's level is the luma at the place, for
// chroma too: its noise follows the light that arrives and not the colour.
struct NoiseLine {
  double a = 0;
  double b = 0;

  double variance(double level) const { return std::max(0.0, a * level + b); }
};

// A profile holds the lines of Y, U and V, in 8-bit levels before these are rounded.
using NoiseProfile = std::array<NoiseLine, 3>;

constexpr std::array<const char*, 3> kPlaneNames = {"y", "u", "v"};

// Returns the frame with normal noise. The same seed and index give the same bytes.
Frame with_noise(const Frame& clean, const NoiseProfile& profile, uint64_t seed, int index);

// Writes a profile as {"y": {"a": 0.21, "b": 4.5}, "u": .., "v": ..}.
std::string to_json(const NoiseProfile& profile);

// Reads a profile. Throws an Error that names the file and says what a profile is.
NoiseProfile load_noise_profile(const std::string& path);

}  // namespace zavri::tools
