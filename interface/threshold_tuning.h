#pragma once

#include <cstdint>

#include "include/zavricustpro.h"

namespace zavri {

// Returns the threshold for a sensor gain: `requested` itself when it is 1..100, otherwise the
// curve `table`[0, count) at `gain`, or the built-in curve when there is none. Below the first
// point the curve runs through the origin, from the last point on it stays level.
uint8_t tune_threshold(uint8_t requested, uint8_t gain, const T_GainThreshPoint* table,
                       uint8_t count);

// Returns `threshold` times the percentage for a frame of width x height pixels, whose megapixels
// are counted whole: 0 below two of them, 15 % at two, all of it from 20 to 255.
uint8_t scale_threshold(uint8_t threshold, uint32_t width, uint32_t height);

}  // namespace zavri
