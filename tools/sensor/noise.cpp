#include "tools/sensor/noise.h"

#include <algorithm>
#include <cmath>

#include "tools/sensor/random.h"
#include "tools/sensor/rows.h"

namespace zavri::tools {
namespace {

// Returns the number with its bits in reverse order. Pairs of a stratum i and the stratum with the
// reversed number fill the unit square evenly, so that mean and variance of the draws come out
// right.
int reversed_bits(int i) {
  int reversed = 0;
  for (int bit = 0; bit < kDrawBits; ++bit) reversed |= (i >> bit & 1) << (kDrawBits - 1 - bit);
  return reversed;
}

// Walks up the distribution of photon counts as probabilities ascend.
class PoissonQuantile {
 public:
  explicit PoissonQuantile(double mean)
      : mean_(mean), probability_(std::exp(-mean)), below_(probability_) {}

  double next(double p, double normal) {
    // Above this mean the normal distribution is as good, and exp() would soon underflow.
    if (mean_ > 200) return std::max(0.0, mean_ + std::sqrt(mean_) * normal);
    while (below_ < p && probability_ > 0) {
      probability_ *= mean_ / ++count_;
      below_ += probability_;
    }
    return count_;
  }

 private:
  double mean_;
  double count_ = 0;
  double probability_;  // of count_
  double below_;        // of count_ or less
};

}  // namespace

double linear_from_srgb(double value) {
  const double v = value / 255;
  return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
}

double srgb_from_linear(double linear) {
  const double l = std::clamp(linear, 0.0, 1.0);
  return 255 * (l <= 0.0031308 ? 12.92 * l : 1.055 * std::pow(l, 1 / 2.4) - 0.055);
}

SensorNoise::SensorNoise(const Sensor& sensor) : draws_(256) {
  const std::array<double, kDraws>& normal = normal_draws();
  for (int value = 0; value < 256; ++value) {
    PoissonQuantile photons(linear_from_srgb(value) * sensor.white());
    for (int i = 0; i < kDraws; ++i) {
      const double electrons =
          photons.next(stratum(i), normal[i]) + sensor.read_noise * normal[reversed_bits(i)];
      draws_[value][i] = static_cast<float>(srgb_from_linear(electrons / sensor.white()));
    }
  }
}

Frame capture(const Picture& picture, const SensorNoise& noise, uint64_t seed, int index) {
  Picture noisy(picture.width, picture.height);
  const size_t row_bytes = 3 * static_cast<size_t>(picture.width);
  for_each_row(picture.height, [&](int y) {
    Generator generator = row_generator(seed, index, y);
    const uint8_t* const from = &picture.rgb[row_bytes * static_cast<size_t>(y)];
    uint8_t* const to = &noisy.rgb[row_bytes * static_cast<size_t>(y)];
    for (size_t x = 0; x < row_bytes; x += 3) {
      uint64_t bits = generator.next();
      for (size_t channel = x; channel < x + 3; ++channel, bits >>= kDrawBits) {
        const float drawn = noise.draws(from[channel])[bits % SensorNoise::kDraws];
        const float to_nearest = drawn + 0.5F;
        to[channel] = static_cast<uint8_t>(to_nearest);
      }
    }
  });
  return to_frame(noisy);
}

}  // namespace zavri::tools
