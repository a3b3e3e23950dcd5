#pragma once

#include <array>
#include <cstdint>

namespace zavri::tools {

// This generator, splitmix64, is as small as its state.
struct Generator {
  uint64_t state;

  uint64_t next() {
    uint64_t z = state += 0x9e3779b97f4a7c15;
    z = (z ^ z >> 30) * 0xbf58476d1ce4e5b9;
    z = (z ^ z >> 27) * 0x94d049bb133111eb;
    return z ^ z >> 31;
  }

  // Returns numbers that are even over (0, 1).
  double uniform() { return (static_cast<double>(next() >> 12) + 0.5) * 0x1p-52; }
};

// Returns the value that a standard normal variable stays below with probability p.
double normal_quantile(double p);

// Distributions are tables of so many values, all equally likely: value i stands for the stratum
// [i, i + 1) / kDraws of probabilities, by its middle.
constexpr int kDrawBits = 12;
constexpr int kDraws = 1 << kDrawBits;

constexpr double stratum(int i) { return (i + 0.5) / kDraws; }

// Returns the standard normal distribution in ascending order.
const std::array<double, kDraws>& normal_draws();

// Returns the generator of row y of a frame, so that rows can be made in any order.
Generator row_generator(uint64_t seed, int frame, int y);

}  // namespace zavri::tools
