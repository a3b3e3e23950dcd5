#pragma once

#include <cstdint>

#include "include/zavricustpro.h"

// The library's strips are compared with this multi-frame denoise, which works position by position
// and is written for nothing but to be read.
namespace zavri::testing {

void naive_denoise_strip(const T_3DYuvDenoiseParam& param, int strip);

// Smooths one strip: along it, then down its columns.
void naive_smooth_strip(uint8_t* plane, int width, int rows, int stride);

}  // namespace zavri::testing
