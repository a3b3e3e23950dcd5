#include "tools/sensor/random.h"

#include <cmath>

namespace zavri::tools {

double normal_quantile(double p) {
  double low = -6;
  double high = 6;
  for (int i = 0; i < 50; ++i) {
    const double middle = (low + high) / 2;
    (std::erfc(-middle / std::sqrt(2.0)) / 2 < p ? low : high) = middle;
  }
  return low;
}

const std::array<double, kDraws>& normal_draws() {
  static const std::array<double, kDraws> draws = [] {
    std::array<double, kDraws> values;
    for (int i = 0; i < kDraws; ++i) {
      values[static_cast<size_t>(i)] = normal_quantile(stratum(i));
    }
    return values;
  }();
  return draws;
}

Generator row_generator(uint64_t seed, int frame, int y) {
  Generator generator{seed};
  generator.state = generator.next() + static_cast<uint64_t>(frame);
  generator.state = generator.next() + static_cast<uint64_t>(y);
  return generator;
}

}  // namespace zavri::tools
