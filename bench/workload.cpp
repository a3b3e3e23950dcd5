#include "bench/workload.h"

#include <random>

namespace zavri::bench {
namespace {

// Returns a value for each tile that looks random but is the same in every frame.
uint32_t tile_value(uint32_t x, uint32_t y, uint32_t seed) {
  uint32_t h = x * 73856093u ^ y * 19349663u ^ seed * 83492791u;
  h ^= h >> 13;
  h *= 0x5bd1e995u;
  return h ^ h >> 15;
}

using Random = std::mt19937;

Bytes noisy_plane(int width, int height, int tile, uint32_t seed, uint32_t spread, Random& random) {
  Bytes plane(static_cast<size_t>(width) * static_cast<size_t>(height));
  size_t i = 0;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x, ++i) {
      const uint32_t level = 40 + tile_value(x / tile, y / tile, seed + (x & 1)) % 120;
      plane[i] = static_cast<uint8_t>(level + random() % spread);
    }
  }
  return plane;
}

}  // namespace

// Two values of a spread of 24 levels are less than 10 apart with probability 0.66; of a pair both
// are in 0.43 of the cases, and two of the three other frames hardly ever agree alike.
Burst::Burst(int frame_width, int frame_height, Noise noise)
    : width(frame_width), height(frame_height) {
  Random random(1);
  const uint32_t spread = noise == Noise::kNear ? 7 : 28;
  for (int k = 0; k < 4; ++k) {
    luma[k] = noisy_plane(width, height, 24, 1, 7, random);
    chroma[k] = noisy_plane(width, height / 2, 24, 2, spread, random);
  }
}

Bytes run_plane(int width, int height, Runs runs) {
  Random random(2);
  if (runs == Runs::kLong) return noisy_plane(width, height, 200, 3, 7, random);
  Bytes plane = noisy_plane(width, height, 12, 4, 7, random);
  for (uint8_t& byte : plane) {
    if (random() % 16 == 0) byte = static_cast<uint8_t>(byte + random() % 30);
  }
  return plane;
}

}  // namespace zavri::bench
