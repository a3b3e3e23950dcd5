#pragma once

#include <algorithm>
#include <vector>

#include "tools/frame.h"
#include "tools/rows.h"

namespace zavri::tools {

inline uint8_t to_byte(float value) {
  return static_cast<uint8_t>(std::clamp(value + 0.5F, 0.0F, 255.0F));
}

struct YuvSample {
  float y, u, v;
};

// BT.601, full range, of red, green and blue in 0..255.
inline YuvSample to_yuv(const float* rgb) {
  const float y = 0.299F * rgb[0] + 0.587F * rgb[1] + 0.114F * rgb[2];
  return {y, 128.0F + 0.564334F * (rgb[2] - y), 128.0F + 0.713267F * (rgb[0] - y)};
}

// A frame of even size from rows of float RGB that fill_row(y, rgb) writes; chroma is the mean of
// its 2x2 block. Rows come from several threads, each row once.
template <class FillRow>
Frame frame_from_rows(int width, int height, FillRow fill_row) {
  Frame frame(width & ~1, height & ~1);
  for_each_row(frame.height / 2, [&](int pair) {
    std::vector<float> rgb(3 * static_cast<size_t>(width));
    std::vector<float> sums(static_cast<size_t>(frame.width));
    for (int y = 2 * pair; y < 2 * pair + 2; ++y) {
      fill_row(y, rgb.data());
      uint8_t* const luma = &frame.luma[static_cast<size_t>(y) * frame.width];
      for (int x = 0; x < frame.width; ++x) {
        const YuvSample sample = to_yuv(&rgb[3 * static_cast<size_t>(x)]);
        luma[x] = to_byte(sample.y);
        sums[x & ~1] += sample.u;
        sums[x | 1] += sample.v;
      }
    }
    uint8_t* const chroma = &frame.chroma[static_cast<size_t>(pair) * frame.width];
    for (int x = 0; x < frame.width; ++x) chroma[x] = to_byte(sums[x] / 4);
  });
  return frame;
}

}  // namespace zavri::tools
