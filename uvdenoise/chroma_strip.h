#pragma once

#include <cstdint>

#include "include/zavricustpro.h"
#include "uvdenoise/chroma_window.h"

namespace zavri {

// Denoises strip number `strip` of the chroma plane in place: filters its grid along the rows, then
// down the columns, and fills in what lies between.
void weighted_denoise(const Taps& taps, uint32_t strip, const T_UVDenoiseParam& param);

// Denoises a strip like weighted_denoise(), but with the fixed tolerance instead of weights, with
// eleven taps and no borders.
void tolerant_denoise(uint32_t strip, const T_UVDenoiseParam& param);

}  // namespace zavri
