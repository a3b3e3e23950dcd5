#pragma once

#include <cstdint>

#include "include/zavricustpro.h"

namespace zavri {

// Denoises strip number `strip` of the chroma plane in place: filters its grid along the rows, then
// down the columns, and fills in what lies between. `taps` is 7, 11, 15 or 19.
void weighted_denoise(int taps, uint32_t strip, const T_UVDenoiseParam& param);

// The same with the fixed tolerance, eleven taps and no borders.
void tolerant_denoise(uint32_t strip, const T_UVDenoiseParam& param);

}  // namespace zavri
