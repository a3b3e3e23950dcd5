#include "platform/host/scale_taps.h"

#include <algorithm>
#include <numeric>

namespace zavri::host {

Positions::Positions(uint32_t from, uint32_t to, int bits) : divisor_(2 * int64_t{to}) {
  const int64_t one = int64_t{1} << bits;
  const int64_t step = 2 * int64_t{from} * one;
  step_units_ = step / divisor_;
  step_rest_ = step % divisor_;
  // The first position is (from - to) / (2 * to), which is above -1/2. The division is that of the
  // place one sample further, which is positive.
  const int64_t shifted = (int64_t{from} + to) * one;
  units_ = shifted / divisor_ - one;
  rest_ = shifted % divisor_;
}

void move_inside(int64_t first, uint32_t count, uint32_t from, Taps& taps) {
  const int64_t last = int64_t{from} - 1;
  const int64_t start = std::clamp<int64_t>(first, 0, std::max<int64_t>(int64_t{from} - count, 0));
  Taps moved{static_cast<uint32_t>(start), {}};
  for (uint32_t j = 0; j < count; ++j) {
    const int64_t at = std::clamp<int64_t>(first + j, 0, last) - start;
    moved.weights[at] = static_cast<int16_t>(moved.weights[at] + taps.weights[j]);
  }
  taps = moved;
}

int LinearTaps::bits_needed(uint32_t from, uint32_t to) {
  const uint32_t common = std::gcd(from, to);
  const uint32_t step = from / common;
  const uint32_t parts = to / common;
  // Positions are (step * (2i + 1) - parts) / (2 * parts), with both reduced. A single part gives
  // whole samples where the step is odd, halves where it is even.
  if (parts == 1) return step % 2 == 1 ? 0 : 1;
  const bool power_of_two = (parts & (parts - 1)) == 0;
  return power_of_two ? std::min(__builtin_ctz(parts) + 1, kMostBits) : kMostBits;
}

}  // namespace zavri::host
