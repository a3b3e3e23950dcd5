#include "tools/quality/verdict.h"

#include <cstdio>

namespace zavri::tools {
namespace {

// Changes below these do not show.
constexpr double kTextureLoss = 0.1;   // dB
constexpr double kGhosts = 1;          // levels
constexpr double kNoiseRemoved = 0.5;  // dB

std::string text(double value) {
  char digits[32];
  snprintf(digits, sizeof digits, "%.1f", value);
  return digits;
}

// What to try, by what got worse.
struct Advice {
  const char* plane;
  const char* for_texture;
  const char* for_ghosts;
  const char* for_noise;
};
constexpr Advice kLuma = {
    "luma", "a lower --thresh-luma, or --mode chroma, which leaves luma as it is",
    "a lower --thresh-luma or --thresh", "a higher --thresh-luma, and --thresh as high"};
constexpr Advice kChroma = {"chroma", "a lower --thresh", "a lower --thresh", "a higher --thresh"};

void add_losses(const Advice& advice, const PlaneScore& before, const PlaneScore& after,
                std::vector<std::string>& lines) {
  const std::string plane = advice.plane;
  if (after.texture_psnr < before.texture_psnr - kTextureLoss) {
    lines.push_back(plane + " got worse where there is detail: texture " +
                    text(before.texture_psnr) + " to " + text(after.texture_psnr) + " dB; try " +
                    advice.for_texture);
  }
  const double ghosts = after.ghost_error.value_or(0) - before.ghost_error.value_or(0);
  if (ghosts > kGhosts) {
    lines.push_back(plane + " has ghosts of " + text(*after.ghost_error) +
                    " levels where something moves; try " + advice.for_ghosts);
  }
  if (after.noise_removed < kNoiseRemoved) {
    lines.push_back(plane + " kept its noise: " + text(after.noise_removed) +
                    " dB were removed; try " + advice.for_noise);
  }
}

}  // namespace

std::vector<std::string> losses(const Score& before, const Score& after) {
  std::vector<std::string> lines;
  add_losses(kLuma, before.luma, after.luma, lines);
  add_losses(kChroma, before.chroma, after.chroma, lines);
  return lines;
}

}  // namespace zavri::tools
