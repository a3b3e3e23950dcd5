#include "tools/sensor/noise.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tools/images/metrics.h"
#include "tools/sensor/burst.h"

namespace zavri::tools {
namespace {

// Mean and variance of the draws in linear light, where the sensor does not clip.
TEST(Noise, FollowsTheSensorsPhotonsAndReadOut) {
  for (int value = 0; value < 256; ++value) {
    EXPECT_NEAR(srgb_from_linear(linear_from_srgb(value)), value, 1e-3);
  }
  for (const double gain : {1.0, 8.0, 64.0}) {
    Sensor sensor;
    sensor.gain = gain;
    const SensorNoise noise(sensor);
    for (const int value : {90, 128, 170}) {
      SCOPED_TRACE(::testing::Message() << "gain " << gain << " value " << value);
      const double photons = linear_from_srgb(value) * sensor.white();
      double sum = 0;
      double squares = 0;
      for (int i = 0; i < SensorNoise::kDraws; ++i) {
        const float drawn = noise.draws(static_cast<uint8_t>(value))[i];
        const double electrons = linear_from_srgb(drawn) * sensor.white();
        sum += electrons;
        squares += electrons * electrons;
      }
      const double mean = sum / SensorNoise::kDraws;
      const double variance = squares / SensorNoise::kDraws - mean * mean;
      EXPECT_NEAR(mean, photons, 0.01 * photons);
      EXPECT_NEAR(variance, photons + 9, 0.04 * (photons + 9));
    }
  }
}

TEST(Noise, DiffersFromFrameToFrameAndRepeatsWithItsSeed) {
  const SensorNoise noise(Sensor{});
  Picture picture(64, 48);
  std::fill(picture.rgb.begin(), picture.rgb.end(), 128);
  const auto bytes = [&](uint64_t seed, int index) {
    return capture(picture, noise, seed, index).buffer();
  };
  EXPECT_EQ(bytes(5, 0), bytes(5, 0));
  EXPECT_NE(bytes(5, 0), bytes(5, 1));
  EXPECT_NE(bytes(5, 0), bytes(6, 0));
}

TEST(Burst, ShowsTheMiddleInRowsThatTheStripsShareOut) {
  Picture photograph(67, 45);
  for (size_t i = 0; i < photograph.rgb.size(); ++i) {
    photograph.rgb[i] = static_cast<uint8_t>(i / (3 * 67) * 5);  // by the row
  }
  BurstSettings settings;
  settings.frames = 2;
  const BurstFrames burst = make_burst(photograph, settings);
  EXPECT_EQ(burst.clean.size(), "66x40");
  EXPECT_NEAR(burst.clean.luma_row(0)[0], 2 * 5, 1);
  ASSERT_EQ(burst.noisy.size(), 2u);
  EXPECT_EQ(burst.noisy[1].size(), "66x40");
  EXPECT_GT(compare(burst.noisy[1], burst.clean)[0].psnr, 30);
}

}  // namespace
}  // namespace zavri::tools
