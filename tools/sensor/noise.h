#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "tools/images/frame.h"
#include "tools/sensor/random.h"

namespace zavri::tools {

// A sensor at a gain (ISO over 100) has two kinds of noise: photons arrive Poisson distributed, and
// reading them out adds Gaussian noise. Both act on linear light, before the 8-bit gamma of the
// picture.
struct Sensor {
  double gain = 1;
  double full_well = 12000;  // electrons of white at gain 1
  double read_noise = 3;     // electrons

  double white() const { return full_well / gain; }
};

// These turn an 8-bit sRGB value into linear light 0..1, and back into 0..255.
double linear_from_srgb(double value);
double srgb_from_linear(double linear);

// Holds what the sensor makes of each 8-bit value: a set of kDraws values, all equally likely,
// whose distribution is that of the noisy value.
class SensorNoise {
 public:
  static constexpr int kDraws = tools::kDraws;

  explicit SensorNoise(const Sensor& sensor);

  // Returns kDraws values, each 0..255.
  const float* draws(uint8_t value) const { return draws_[value].data(); }

 private:
  std::vector<std::array<float, kDraws>> draws_;
};

// Makes one noisy capture of the picture. The same seed and index give the same bytes.
Frame capture(const Picture& picture, const SensorNoise& noise, uint64_t seed, int index);

}  // namespace zavri::tools
