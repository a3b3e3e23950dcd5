#include "tools/tuning/weighting.h"

#include <algorithm>

namespace zavri::tools {
namespace {

// Parts that come out exactly as they should have this number.
constexpr double kMost = 60;  // dB

double worth(const PlaneScore& score, const PlaneScore& before) {
  const double noise = std::min(score.noise_removed, kMost);
  const double texture = std::min(score.texture_psnr, kMost) - std::min(before.texture_psnr, kMost);
  const double more_ghosts = score.ghost_error.value_or(0) - before.ghost_error.value_or(0);
  return noise + kTextureWeight * texture - kGhostWeight * std::max(more_ghosts, 0.0);
}

double ghosts(const Score& score) {
  return score.luma.ghost_error.value_or(0) + score.chroma.ghost_error.value_or(0);
}

}  // namespace

double worth(Planes planes, const Score& score, const Score& before) {
  const double chroma = worth(score.chroma, before.chroma);
  return planes == Planes::kChroma ? chroma : (worth(score.luma, before.luma) + chroma) / 2;
}

bool is_free_of_ghosts(const Score& score, const Score& before, const Score& standard) {
  return ghosts(score) <= std::max(ghosts(standard), ghosts(before) + kGhostTolerance);
}

}  // namespace zavri::tools
