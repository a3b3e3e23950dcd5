#pragma once

#include <cstdint>

#include "include/zavricustpro.h"

namespace zavri {

// What the windows differ in. The one of the left border leads to the right, that of the right
// border, one sample shorter, to the left; those of the upper and lower borders are 2 * reach long.
struct Taps {
  int reach;        // on either side of the centre
  int left_border;  // samples
};
inline constexpr Taps kTaps7 = {3, 10};
inline constexpr Taps kTaps11 = {5, 15};
inline constexpr Taps kTaps15 = {7, 15};
inline constexpr Taps kTaps19 = {9, 15};

// Denoises strip number `strip` of the chroma plane in place: filters its grid along the rows, then
// down the columns, and fills in what lies between.
void weighted_denoise(const Taps& taps, uint32_t strip, const T_UVDenoiseParam& param);

// The same with the fixed tolerance, eleven taps and no borders.
void tolerant_denoise(uint32_t strip, const T_UVDenoiseParam& param);

}  // namespace zavri
