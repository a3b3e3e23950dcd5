#pragma once

#include <cstdint>

#include "include/zavricustpro.h"

// The multi-frame denoise, written position by position and for nothing but to be read: what the
// library's strips are compared with.
namespace zavri::testing {

void naive_denoise_strip(const T_3DYuvDenoiseParam& param, int strip);

// The smoothing of one strip: along it, then down its columns.
void naive_smooth_strip(uint8_t* plane, int width, int rows, int stride);

}  // namespace zavri::testing
