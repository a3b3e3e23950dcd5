#pragma once

#include <cstdint>
#include <vector>

namespace zavri::tools {

// Tells a mean, and where it would lie in nine of ten cases had other things been measured: the 5th
// and the 95th percentile of the means of as many values, drawn from these with replacement.
struct Spread {
  double mean = 0;
  double low = 0;
  double high = 0;
};

// Draws by the seed, so that the same one gives the same spread. Of one value all three are that
// value.
Spread bootstrap(const std::vector<double>& values, uint64_t seed);

}  // namespace zavri::tools
