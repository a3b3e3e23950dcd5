#include "tests/support/naive_denoise3d.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <vector>

namespace zavri::testing {
namespace {

struct DenoiseStrip {
  const T_3DYuvDenoiseParam& p;
  const int number;
  const ptrdiff_t width = p.width;
  const ptrdiff_t quarter = width / 4;
  const ptrdiff_t rows = number == 3 ? p.height / 2 - 3 * (p.height / 8) : p.height / 8;
  const ptrdiff_t chroma = static_cast<ptrdiff_t>(p.uv_offset) +
                           number * static_cast<ptrdiff_t>(p.height / 8) * p.uv_stride;
  const ptrdiff_t luma = number * static_cast<ptrdiff_t>(p.height / 4) * p.y_stride;
  uint8_t* const reference = p.frame_y[p.ref_index];
  std::vector<const uint8_t*> others = {};

  enum Writes { kChroma, kLuma, kBoth };

  void run();
  void position(ptrdiff_t uv, ptrdiff_t y, int t, int w, Writes writes);
  void whole(int w, Writes writes);
  void section(ptrdiff_t uv, ptrdiff_t y, ptrdiff_t bytes, bool left, Writes writes);
  void drifting_edges(Writes writes);
  void quarter_edges(Writes writes);
  bool edges(Writes writes);
  bool merge();
};

void DenoiseStrip::position(ptrdiff_t uv, ptrdiff_t y, int t, int w, Writes writes) {
  const int old[3] = {reference[uv], reference[uv + 1], writes == kChroma ? 0 : reference[y]};
  int sum[3] = {old[0], old[1], old[2]};
  int n = 1;
  for (const uint8_t* const other : others) {
    const int u = other[uv];
    const int v = other[uv + 1];
    if (std::abs(u - old[0]) >= t || std::abs(v - old[1]) >= t) continue;
    ++n;
    sum[0] += u;
    sum[1] += v;
    if (writes != kChroma) sum[2] += other[y];
  }
  if (n == 1) return;
  int mean[3];
  for (int i = 0; i < 3; ++i) {
    mean[i] = n == 2 ? (sum[i] + 1) >> 1 : n == 3 ? (sum[i] + old[i] + 2) >> 2 : (sum[i] + 1) >> 2;
  }
  if (writes != kLuma) {
    reference[uv] = static_cast<uint8_t>(mean[0]);
    reference[uv + 1] = static_cast<uint8_t>(mean[1]);
  }
  if (writes == kChroma || std::abs(mean[2] - old[2]) >= w) return;
  const ptrdiff_t below = y + static_cast<ptrdiff_t>(p.y_stride);
  for (const ptrdiff_t at : {y, y + 1, below, below + 1}) {
    reference[at] = static_cast<uint8_t>(mean[2]);
  }
}

void DenoiseStrip::whole(int w, Writes writes) {
  for (ptrdiff_t r = 0; r < rows; ++r) {
    for (ptrdiff_t j = 0; j < width / 2; ++j) {
      position(chroma + r * p.uv_stride + 2 * j, luma + 2 * r * p.y_stride + 2 * j, p.thresh, w,
               writes);
    }
  }
}

void DenoiseStrip::section(ptrdiff_t uv, ptrdiff_t y, ptrdiff_t bytes, bool left, Writes writes) {
  for (ptrdiff_t b = 0; b < bytes; b += 2) {
    const auto ramp = static_cast<int>(p.threshY * (left ? quarter - b : b) / quarter);
    const int t = std::max(ramp, 2);
    position(uv + b, y + b, t, t, writes);
  }
}

// With 2 and 3 frames cursors run over both sections and are never set back to a row's start.
void DenoiseStrip::drifting_edges(Writes writes) {
  ptrdiff_t uv = chroma;
  ptrdiff_t y = luma;
  const auto advance = [&](ptrdiff_t chroma_bytes, ptrdiff_t luma_bytes) {
    uv += chroma_bytes;
    y += luma_bytes;
  };
  const ptrdiff_t bytes = 2 * quarter;
  for (ptrdiff_t r = 0; r < rows; ++r) {
    section(uv, y, bytes, true, writes);
    advance(bytes, bytes);
    advance(width - bytes, width - bytes);
    section(uv, y, bytes, false, writes);
    advance(bytes, bytes);
    advance(static_cast<uint16_t>(p.uv_stride - p.width),
            static_cast<uint16_t>(2 * p.y_stride - p.width));
  }
}

void DenoiseStrip::quarter_edges(Writes writes) {
  const ptrdiff_t right = (quarter + 1) / 2 * 2 + width - width / 2 / 2 * 2;
  for (ptrdiff_t r = 0; r < rows; ++r) {
    const ptrdiff_t uv = chroma + r * p.uv_stride;
    const ptrdiff_t y = luma + 2 * r * p.y_stride;
    section(uv, y, quarter, true, writes);
    section(uv + right, y + right, quarter, false, writes);
  }
}

bool DenoiseStrip::edges(Writes writes) {
  if (p.threshY < 2 || number == 1 || number == 2) return false;
  p.frame_num == 4 ? quarter_edges(writes) : drifting_edges(writes);
  return true;
}

// Returns false where the strip ends at once, without the smoothing.
bool DenoiseStrip::merge() {
  if (p.thresh_tune != 0) {
    if (p.switch_a != 0 && p.switch_b == 0) {
      whole(p.threshY, kBoth);
      return true;
    }
    if (p.switch_b != 0 && p.gain < 16) return edges(kBoth);
  }
  if (p.thresh_tune == 0) return false;
  if (p.switch_c != 0 && p.gain < 16) return edges(kLuma);
  if (p.thresh < 2) return false;
  whole(0, kChroma);
  return true;
}

void DenoiseStrip::run() {
  if (p.thresh <= 1 && p.threshY < 2) return;
  if (p.frame_num < 1 || p.frame_num > 4) return;
  const auto other = [this](int k) { others.push_back(p.frame_y[k]); };
  const int ref = p.ref_index;
  if (p.frame_num == 2 || p.frame_num == 3) other(ref != 0 ? 0 : 1);
  if (p.frame_num == 3) other(ref == 0 || ref == 1 ? 2 : 1);
  for (int k = 0; p.frame_num == 4 && k < 4; ++k) {
    if (k != ref) other(k);
  }
  if (p.frame_num > 1 && !merge()) return;
  if (p.switch_d == 0) return;
  naive_smooth_strip(reference + chroma, static_cast<uint16_t>(width), static_cast<uint16_t>(rows),
                     static_cast<uint16_t>(p.uv_stride));
}

// Smooths the runs among the `pairs` (U, V) pairs at plane[0], plane[step], ..
void smooth_runs(uint8_t* plane, ptrdiff_t step, ptrdiff_t pairs) {
  ptrdiff_t end = 0;
  for (ptrdiff_t first = 0; first < pairs; first = end) {
    const int anchor[2] = {plane[first * step], plane[first * step + 1]};
    int sum[2] = {};
    for (end = first; end < pairs; ++end) {
      const uint8_t* const pair = plane + end * step;
      if (std::abs(pair[0] - anchor[0]) >= 20 || std::abs(pair[1] - anchor[1]) >= 20) break;
      for (const int i : {0, 1}) sum[i] += pair[i];
    }
    const auto n = static_cast<int>(end - first);
    for (ptrdiff_t k = first; k < end; ++k) {
      for (const int i : {0, 1}) plane[k * step + i] = static_cast<uint8_t>((sum[i] + n / 2) / n);
    }
  }
}

}  // namespace

void naive_denoise_strip(const T_3DYuvDenoiseParam& param, int strip) {
  DenoiseStrip{param, strip}.run();
}

void naive_smooth_strip(uint8_t* plane, int width, int rows, int stride) {
  smooth_runs(plane, 2, (ptrdiff_t{rows} * stride + 1) / 2);
  for (int x = 0; x < width; x += 2) smooth_runs(plane + x, stride, rows);
}

}  // namespace zavri::testing
