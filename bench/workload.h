#pragma once

#include <cstdint>
#include <vector>

namespace zavri::bench {

using Bytes = std::vector<uint8_t>;

enum class Noise {
  kNear,  // the frames are a few levels apart: all pairs agree within kThreshold
  kHard,  // about a third of the pairs agree, and no branch predictor knows which
};
inline constexpr int kThreshold = 10;

// A burst is four captures of one scene: luma and chroma planes without padding, in tiles of 24
// samples.
struct Burst {
  int width;
  int height;
  Bytes luma[4];
  Bytes chroma[4];

  Burst(int width, int height, Noise noise);
};

enum class Runs {
  kLong,   // the tiles have 100 pairs and hardly any noise
  kShort,  // the tiles have 6 pairs and texture
};

// Makes a chroma plane of width x height bytes.
Bytes run_plane(int width, int height, Runs runs);

// Restores the bytes that an operation in place has changed; no time is measured meanwhile.
inline void restore(Bytes& bytes, const Bytes& from) { bytes = from; }

}  // namespace zavri::bench
