#pragma once

#include <cstdint>

#include "include/zavricustpro.h"

// The library's strips are compared with this chroma denoise, which works sample by sample and is
// written for nothing but to be read.
namespace zavri::testing {

// `taps` is 7, 11, 15 or 19.
void naive_uv_denoise_strip(const T_UVDenoiseParam& param, uint32_t strip, int taps);

void naive_tolerant_denoise_strip(const T_UVDenoiseParam& param, uint32_t strip);

void naive_fill_grid(uint8_t* start, int width, int rows, int stride, uint32_t strip);

}  // namespace zavri::testing
