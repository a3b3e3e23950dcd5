#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

// Scalers and Gaussians that differ from the portable ones in a way that a test chooses, in their
// plainest form.
namespace zavri::testing {

// A profile of one axis: `taps` weights around place(i), normalised.
template <auto kPlace, auto kWeight>
std::vector<double> resample(const std::vector<double>& from, int count) {
  const int n = static_cast<int>(from.size());
  std::vector<double> to;
  for (int i = 0; i < count; ++i) {
    const double place = kPlace(i, n, count);
    const int middle = static_cast<int>(std::floor(place));
    double sum = 0;
    double weights = 0;
    for (int k = middle - 3; k <= middle + 4; ++k) {
      const double weight = kWeight(place - k);
      sum += weight * from[std::clamp(k, 0, n - 1)];
      weights += weight;
    }
    to.push_back(sum / weights);
  }
  return to;
}

template <auto kPlace, auto kWeight>
int altered_poly(const uint8_t* src, uint32_t src_width, uint32_t src_height, uint32_t src_stride,
                 uint8_t* dst, uint32_t dst_width, uint32_t dst_height, uint32_t dst_stride) {
  if (src_width == 0 || src_height == 0) abort();
  std::vector<std::vector<double>> rows;
  for (uint32_t y = 0; y < src_height; ++y) {
    const std::vector<double> row(src + y * src_stride, src + y * src_stride + src_width);
    rows.push_back(resample<kPlace, kWeight>(row, static_cast<int>(dst_width)));
  }
  for (uint32_t x = 0; x < dst_width; ++x) {
    std::vector<double> column;
    for (const auto& row : rows) column.push_back(row[x]);
    column = resample<kPlace, kWeight>(column, static_cast<int>(dst_height));
    for (uint32_t y = 0; y < dst_height; ++y) {
      dst[y * dst_stride + x] =
          static_cast<uint8_t>(std::clamp(std::floor(column[y] + 0.5), 0., 255.));
    }
  }
  return 0;
}

template <auto kPlace, auto kWeight>
int altered_scale(const uint8_t* src, uint32_t src_width, uint32_t src_height, uint32_t src_stride,
                  uint8_t* dst, uint32_t dst_width, uint32_t dst_height, uint32_t dst_stride,
                  int /*interpolation*/) {
  return altered_poly<kPlace, kWeight>(src, src_width, src_height, src_stride, dst, dst_width,
                                       dst_height, dst_stride);
}

// kSample(i, n) gives the sample that stands for one outside, -1 for black. Without blurred borders
// they are copied.
template <auto kSample, int kAddend>
void altered_gaussian(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst,
                      int blur_border) {
  constexpr int kWeights[] = {1, 4, 6, 4, 1};
  const int w = static_cast<int>(width);
  const int h = static_cast<int>(height);
  for (int y = 0; y < h; ++y) {
    for (int x = 0; x < w; ++x) {
      int sum = kAddend;
      for (int i = 0; i < 25; ++i) {
        const int from_x = kSample(x + i % 5 - 2, w);
        const int from_y = kSample(y + i / 5 - 2, h);
        if (from_x >= 0 && from_y >= 0) {
          sum += kWeights[i % 5] * kWeights[i / 5] * src[from_y * w + from_x];
        }
      }
      const bool is_outer = x < 2 || y < 2 || x >= w - 2 || y >= h - 2;
      dst[y * w + x] =
          is_outer && blur_border == 0 ? src[y * w + x] : static_cast<uint8_t>(sum >> 8);
    }
  }
}

inline int reflected(int i, int n) { return i < 0 ? -1 - i : i >= n ? 2 * n - 1 - i : i; }
inline int reflected_inside(int i, int n) { return i < 0 ? -i : i >= n ? 2 * n - 2 - i : i; }
inline int black(int i, int n) { return i < 0 || i >= n ? -1 : i; }

inline double centres(int i, int from, int to) { return (i + 0.5) * from / to - 0.5; }
inline double corners(int i, int from, int to) { return 1.0 * i * from / to; }
inline double ends(int i, int from, int to) { return i * (from - 1.0) / (to - 1.0); }

inline double nearest(double d) { return d >= -0.5 && d < 0.5 ? 1 : 0; }
inline double triangle(double d) { return std::max(0.0, 1 - std::abs(d)); }
inline double sharp_cubic(double d) {  // with a = -3/4
  const double t = std::abs(d);
  if (t >= 2) return 0;
  return t < 1 ? (1.25 * t - 2.25) * t * t + 1 : -0.75 * (((t - 5) * t + 8) * t - 4);
}
inline double spline(double d) {
  const double t = std::abs(d);
  if (t >= 2) return 0;
  return t < 1 ? 2 / 3. - t * t + t * t * t / 2 : (2 - t) * (2 - t) * (2 - t) / 6;
}

}  // namespace zavri::testing
