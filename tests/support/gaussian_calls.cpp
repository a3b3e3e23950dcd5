#include "tests/support/gaussian_calls.h"

#include <algorithm>
#include <mutex>
#include <utility>

#include "platform/fastcv.h"

namespace zavri::testing {
namespace {

std::mutex g_mutex;
std::vector<GaussianCall> g_calls;

}  // namespace

std::vector<GaussianCall> take_gaussian_calls() {
  const std::lock_guard<std::mutex> lock(g_mutex);
  return std::exchange(g_calls, {});
}

uint8_t gaussian_at(const uint8_t* plane, int width, int height, int x, int y) {
  constexpr int kTaps[] = {1, 4, 6, 4, 1};
  int sum = 128;
  for (int i = 0; i < 5; ++i) {
    for (int j = 0; j < 5; ++j) {
      const int row = std::clamp(y + i - 2, 0, height - 1);
      const int column = std::clamp(x + j - 2, 0, width - 1);
      sum += kTaps[i] * kTaps[j] * plane[row * width + column];
    }
  }
  return static_cast<uint8_t>(sum >> 8);
}

}  // namespace zavri::testing

void fcvFilterGaussian5x5u8(const uint8_t* src, uint32_t src_width, uint32_t src_height,
                            uint8_t* dst, int blur_border) {
  {
    const std::lock_guard<std::mutex> lock(zavri::testing::g_mutex);
    zavri::testing::g_calls.push_back({src, src_width, src_height, dst, blur_border});
  }
  const int width = static_cast<int>(src_width);
  const int height = static_cast<int>(src_height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      *dst++ = zavri::testing::gaussian_at(src, width, height, x, y);
    }
  }
}
