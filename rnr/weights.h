#pragma once

#include <cstddef>
#include <cstdint>

#include "simd/builds.h"

namespace zavri {

inline constexpr int kWholeWeight = 128;  // blur and keep together

// With D, a pixel's squared distance from the image centre beyond `start`, the blur weighs
//
//   full * D / span   where D < span, truncated towards zero and cut to a byte
//   full              elsewhere, and everywhere for a span of 0
//
// All of it in 32 bits that wrap. A D below 0 (tiny planes only) gives a weight of 0 or below; as a
// byte, one from -135 to -1 means the blurred value alone, one below that a mix.
struct WeightRule {
  int32_t start;
  int32_t span;
  uint8_t full;
};

// Fills blur[0, count) and keep[0, count), each keep = kWholeWeight - blur, for the pixels of a row
// whose first one stands dx, dy from the centre.
using WeighFunction = void (*)(uint8_t* blur, uint8_t* keep, size_t count, int32_t dx, int32_t dy,
                               const WeightRule& rule);

WeighFunction weigh_kernel(PlainBuild);
WeighFunction weigh_kernel(Vector16Build);
WeighFunction weigh_kernel(Vector32Build);

inline WeighFunction weigh_kernel(Build build = best_build()) {
  return pick_build(build, [](auto tag) { return weigh_kernel(tag); });
}

}  // namespace zavri
