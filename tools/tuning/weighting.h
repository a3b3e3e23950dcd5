#pragma once

#include "tools/quality/score.h"

// Settings are held against each other by their worth; docs/sweep.md gives the reasons.
//
// The worth of a result, of luma or of chroma, in dB, is
//
//   noise removed in flat parts
//   + texture PSNR - texture PSNR of the noisy frame
//   - 2 dB for each level of ghost error above the noisy frame's
//
// so that a dB of noise counts as much as a dB of texture, and the noisy frame has the worth 0.
// Merging is worth the mean of luma's and chroma's; the chroma denoise, which leaves luma alone,
// chroma's.
//
// Ghosts are no matter of weights alone: settings that show more ghosts than the defaults, luma's
// and chroma's errors together, in any of the bursts, are not taken at all, however much noise they
// remove. Where the defaults hardly merge, a tenth of a level above the noisy frame is allowed,
// which is less than 8 bits can show.
namespace zavri::tools {

constexpr double kTextureWeight = 1;     // dB a dB
constexpr double kGhostWeight = 2;       // dB a level
constexpr double kGhostTolerance = 0.1;  // levels

// Says which planes an operation changes.
enum class Planes { kBoth, kChroma };

double worth(Planes planes, const Score& score, const Score& before);

// Tells whether a result has no more ghosts than that of the default settings, or hardly any.
bool is_free_of_ghosts(const Score& score, const Score& before, const Score& standard);

}  // namespace zavri::tools
