#pragma once

#include <cstddef>
#include <cstdint>

#include "simd/builds.h"

namespace zavri {

// From this weight on the blurred value stands alone, on purpose: at 128 the formula gives it
// anyway.
inline constexpr uint8_t kBlurAlone = 121;

// For i in [0, count), to[i] becomes blurred[i] where weight[i] reaches kBlurAlone, and elsewhere
//
//   ((128 - weight[i]) * sharp[i] + weight[i] * blurred[i]) >> 7
//
// `to` overlaps none of the others.
using BlendFunction = void (*)(uint8_t* to, const uint8_t* sharp, const uint8_t* blurred,
                               const uint8_t* weight, size_t count);

BlendFunction blend_kernel(PlainBuild);
BlendFunction blend_kernel(Vector16Build);
BlendFunction blend_kernel(Vector32Build);

inline BlendFunction blend_kernel(Build build = best_build()) {
  return pick_build(build, [](auto tag) { return blend_kernel(tag); });
}

}  // namespace zavri
