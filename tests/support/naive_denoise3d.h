#pragma once

#include <cstddef>
#include <cstdint>

#include "include/zavricustpro.h"

// The multi-frame denoise, written position by position and for nothing but to be read: what the
// library's strips are compared with.
namespace zavri::testing {

void naive_denoise_strip(const T_3DYuvDenoiseParam& param, int strip);

// Smooths the runs of (U, V) pairs among plane[0], plane[step], .. : `pairs` of them.
void naive_smooth_runs(uint8_t* plane, ptrdiff_t step, ptrdiff_t pairs);

// All of a strip: along it, then down its columns.
void naive_smooth_strip(uint8_t* plane, int width, int rows, int stride);

}  // namespace zavri::testing
