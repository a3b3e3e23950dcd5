#pragma once

#include <cstddef>
#include <cstdint>

#include "simd/builds.h"

namespace zavri {

// A pixel's weights of the blurred and of the sharp value add up to this.
inline constexpr int kWholeWeight = 128;

// A pixel's D is its squared distance from the image centre less `start`. The blur weighs
//
//   full * D / span   where D < span, truncated towards zero and cut to a byte
//   full              elsewhere, and everywhere for a span of 0
//
// All of this is computed in 32 bits that wrap. On tiny planes a D below 0 can occur, whose weight
// is 0 or negative. The blend then sees its low byte: a weight of -1 is 255, the blurred value
// alone, as are those down to -135, which is 121; -136 is 120 and mixes.
struct WeightRule {
  int32_t start;
  int32_t span;
  uint8_t full;
};

// Fills blur[0, count) with the weights of a row whose first pixel lies dx, dy from the centre, and
// keep[0, count) with what each leaves of kWholeWeight.
using WeighFunction = void (*)(uint8_t* blur, uint8_t* keep, size_t count, int32_t dx, int32_t dy,
                               const WeightRule& rule);

WeighFunction weigh_kernel(PlainBuild);
WeighFunction weigh_kernel(Vector16Build);
WeighFunction weigh_kernel(Vector32Build);

inline WeighFunction weigh_kernel(Build build = best_build()) {
  return pick_build(build, [](auto tag) { return weigh_kernel(tag); });
}

}  // namespace zavri
