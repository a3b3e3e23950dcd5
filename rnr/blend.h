#pragma once

#include <cstddef>
#include <cstdint>

#include "simd/builds.h"

namespace zavri {

// For i in [0, count), to[i] is
//
//   ((128 - weight[i]) * sharp[i] + weight[i] * blurred[i]) >> 7
//
// and from a weight of kBlurAlone on the blurred value alone. `to` overlaps none of the others.
using BlendFunction = void (*)(uint8_t* to, const uint8_t* sharp, const uint8_t* blurred,
                               const uint8_t* weight, size_t count);

// On purpose below 128, where that comes out anyway.
inline constexpr uint8_t kBlurAlone = 121;

BlendFunction blend_kernel(PlainBuild);
BlendFunction blend_kernel(Vector16Build);
BlendFunction blend_kernel(Vector32Build);

inline BlendFunction blend_kernel(Build build = best_build()) {
  return pick_build(build, [](auto tag) { return blend_kernel(tag); });
}

}  // namespace zavri
