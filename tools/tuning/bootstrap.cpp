#include "tools/tuning/bootstrap.h"

#include <algorithm>
#include <numeric>
#include <random>

namespace zavri::tools {
namespace {

constexpr size_t kResamples = 4000;

}  // namespace

Spread bootstrap(const std::vector<double>& values, uint64_t seed) {
  const auto count = static_cast<double>(values.size());
  std::mt19937_64 random(seed);
  std::vector<double> means(kResamples);
  for (double& mean : means) {
    // The distributions of the C++ library are not the same everywhere.
    for (size_t k = 0; k < values.size(); ++k) mean += values[random() % values.size()] / count;
  }
  std::sort(means.begin(), means.end());
  return {std::accumulate(values.begin(), values.end(), 0.0) / count, means[kResamples / 20],
          means[kResamples - 1 - kResamples / 20]};
}

}  // namespace zavri::tools
