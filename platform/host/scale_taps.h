#pragma once

#include <cstdint>

namespace zavri::host {

// Here `to` scaled samples span the same length as `from` source samples: the centre of sample i
// lies at (i + 1/2) * from / to - 1/2. Both numbers are 1 .. 2^31 - 1.

// Walks the positions of the scaled samples 0, 1, 2 .., exactly and without a division for each.
class Positions {
 public:
  // Positions are in units of 1 / 2^bits; `bits` is at most 16.
  Positions(uint32_t from, uint32_t to, int bits);

  int64_t floor() const { return units_; }
  // Rounds ties to even, so that a mirrored picture gives the mirrored result.
  int64_t nearest() const { return units_ + (2 * rest_ + (units_ & 1) > divisor_); }

  void advance() {
    units_ += step_units_;
    rest_ += step_rest_;
    if (rest_ >= divisor_) {
      rest_ -= divisor_;
      ++units_;
    }
  }

 private:
  // The position is units_ + rest_ / divisor_.
  int64_t divisor_;
  int64_t step_units_;
  int64_t step_rest_;
  int64_t units_;
  int64_t rest_;
};

// One scaled sample is made of the source samples from `first` on. For a sample that would lie
// outside the source its first or last one takes over the weight.
struct Taps {
  uint32_t first;
  int16_t weights[4];  // 0 for samples past the source
};

// Moves the weights of `count` taps, of samples first, first + 1 .., inside the source.
void move_inside(int64_t first, uint32_t count, uint32_t from, Taps& taps);

template <class... Weights>
Taps make_taps(int64_t first, uint32_t from, Weights... weights) {
  constexpr uint32_t kCount = sizeof...(weights);
  Taps taps{static_cast<uint32_t>(first), {static_cast<int16_t>(weights)...}};
  if (first < 0 || first + kCount > from) move_inside(first, kCount, from, taps);
  return taps;
}

// Walks the taps of the scaled samples 0, 1, 2 ..: two each, with weights that sum to 2^bits.
class LinearTaps {
 public:
  static constexpr uint32_t kCount = 2;
  static constexpr int kMostBits = 8;

  // Returns the least number of bits for which no weight is rounded, but at most kMostBits.
  static int bits_needed(uint32_t from, uint32_t to);

  LinearTaps(uint32_t from, uint32_t to, int bits)
      : positions_(from, to, bits), from_(from), bits_(bits) {}

  Taps next() {
    const int64_t position = positions_.nearest();
    positions_.advance();
    const int64_t one = int64_t{1} << bits_;
    const int64_t weight = position & (one - 1);
    return make_taps(position >> bits_, from_, one - weight, weight);
  }

 private:
  Positions positions_;
  const uint32_t from_;
  const int bits_;
};

// Walks the four taps that each scaled sample has on a Catmull-Rom spline. Weights sum to 2^14.
class SplineTaps {
 public:
  static constexpr uint32_t kCount = 4;
  static constexpr int kBits = 14;

  SplineTaps(uint32_t from, uint32_t to) : positions_(from, to, kPositionBits), from_(from) {}

  Taps next() {
    constexpr int64_t kOne = int64_t{1} << kPositionBits;
    const int64_t position = positions_.floor();
    positions_.advance();
    const int64_t t = position & (kOne - 1);
    // The polynomials are twice the weights, in units of 1 / 2^(3 * kPositionBits).
    const int64_t t1 = t * kOne * kOne;
    const int64_t t2 = t * t * kOne;
    const int64_t t3 = t * t * t;
    const auto rounded = [](int64_t twice_weight) {
      constexpr int kShift = 3 * kPositionBits + 1 - kBits;
      return static_cast<int>((twice_weight + (int64_t{1} << (kShift - 1))) >> kShift);
    };
    const int outer_left = rounded(2 * t2 - t1 - t3);
    const int left = rounded(2 * kOne * kOne * kOne - 5 * t2 + 3 * t3);
    const int outer_right = rounded(t3 - t2);
    const int right = (1 << kBits) - (outer_left + left + outer_right);
    return make_taps((position >> kPositionBits) - 1, from_, outer_left, left, right, outer_right);
  }

 private:
  static constexpr int kPositionBits = 16;

  Positions positions_;
  const uint32_t from_;
};

}  // namespace zavri::host
