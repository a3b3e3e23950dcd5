#pragma once

#include <vector>

#include "tools/console.h"
#include "tools/operations/denoise.h"

namespace zavri::tools {

// Thresholds are requested, or come from a curve over the gain; the library scales both by the size
// of the frame and cuts them to whole numbers, so that several requests become one used threshold.

// Returns the threshold that frames of this size are worked with when a curve says `value`, 0..255.
// Values of 1..100 may be requested as well.
int used_threshold(int value, const Size& size);

// Finds the smallest of the values 0..255 for each threshold that can be used with frames of this
// size, in ascending order.
struct DistinctValue {
  int value;
  int used;
};
std::vector<DistinctValue> distinct_values(const Size& size);

// Makes tables of what is used with frames of these sizes: "chroma" and "luma" by gain, a row for
// each range of gains with the same thresholds, and "requests" by request. There is no "luma" when
// both have one curve.
Report used_thresholds(const Denoise& curves, const std::vector<Size>& sizes, int first_gain,
                       int last_gain);

}  // namespace zavri::tools
