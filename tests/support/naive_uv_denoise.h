#pragma once

#include <cstdint>

#include "include/zavricustpro.h"

// The chroma denoise, written sample by sample and for nothing but to be read: what the library's
// strips are compared with.
namespace zavri::testing {

// `taps` is 7, 11, 15 or 19.
void naive_uv_denoise_strip(const T_UVDenoiseParam& param, uint32_t strip, int taps);

void naive_tolerant_denoise_strip(const T_UVDenoiseParam& param, uint32_t strip);

void naive_fill_grid(uint8_t* start, int width, int rows, int stride, uint32_t strip);

}  // namespace zavri::testing
