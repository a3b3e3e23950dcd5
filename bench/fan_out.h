#pragma once

#include "include/zavricustpro.h"

namespace zavri::bench {

// Restarts the pool with its threads, and this one, on the first `count` processors.
void use_processors(int count);

// Runs the function on the pool for each strip: pIn0 points to its int32_t number, pIn1 is `param`.
void fan_out(ThreadPoolTaskFunc function, const void* param);

}  // namespace zavri::bench
