#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "bench/workload.h"

namespace zavri::bench {

inline constexpr int kWidth = 1920;
inline constexpr int kHeight = 1080;

inline constexpr size_t kPixels = size_t{kWidth} * kHeight;

// Lets the plugin count one execution of `work`, after one more that warms up: what a process does
// once, as resolving a symbol, is not counted. `prepare` runs before both and is not counted
// either. Prints a line for the count that the plugin reports at the same time:
//
//   merge/whole/2_frames 2073600 905cb34e
//
// with the luma pixels that the operation makes, or whose chroma it makes, and the hash of `result`
// after the execution, which must be the same in all builds.
void count(const std::string& operation, size_t pixels, const std::function<void()>& prepare,
           const std::function<void()>& work, const Bytes& result);

// Counts work that needs no preparation.
void count(const std::string& operation, size_t pixels, const std::function<void()>& work,
           const Bytes& result);

// `picture` is a frame of kWidth x kHeight without padding.
void count_denoise();
void count_resize(const Bytes& picture);
void count_rnr(const Bytes& picture);
void count_composition(const Bytes& picture);
void count_measures(const Bytes& picture);

}  // namespace zavri::bench
