#include "tests/support/naive_uv_denoise.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace zavri::testing {
namespace {

using Samples = std::vector<const uint8_t*>;

struct ChromaStrip {
  const T_UVDenoiseParam& p;
  uint32_t number;
  bool tolerant;

  bool last = number > 2;
  int q = static_cast<int>(p.height / 4);
  int rows = last ? static_cast<int>(p.height) - 3 * q : q;
  int m = rows / 2;
  int n = static_cast<int>(p.width / 4);
  uint8_t* start = p.uv_plane + size_t{p.stride} * number * static_cast<uint32_t>(q);

  uint8_t* sample(int i, int j) const {
    return start + ptrdiff_t{2} * i * static_cast<ptrdiff_t>(p.stride & 0x7fff) + ptrdiff_t{4} * j;
  }

  void filter(uint8_t* centre, const Samples& neighbours) const {
    const int u = centre[0];
    const int v = centre[1];
    const int own_weight = tolerant ? 1 : 64;
    int sums[3] = {own_weight * u, own_weight * v, own_weight};
    for (const uint8_t* other : neighbours) {
      const int d = std::max(std::abs(other[0] - u), std::abs(other[1] - v));
      int w = 0;
      if (tolerant) {
        w = u - 20 < other[0] && other[0] < u + 20 && other[1] > v - 20;
      } else if (d < p.threshold) {
        w = p.weight_table[d];
      }
      sums[0] += w * other[0];
      sums[1] += w * other[1];
      sums[2] += w;
    }
    for (const int i : {0, 1}) {
      centre[i] = static_cast<uint8_t>((sums[i] + (sums[2] >> 1)) / sums[2]);
    }
  }

  // Neighbours are the samples at distances [from, to] along the row or the column, without 0.
  void filter(int i, int j, bool along_row, int from, int to) const {
    Samples neighbours;
    for (int k = from; k <= to; ++k) {
      if (k != 0) neighbours.push_back(along_row ? sample(i, j + k) : sample(i + k, j));
    }
    filter(sample(i, j), neighbours);
  }

  void filter_row(int i, int r, int left) const {
    for (int j = 0; j < r && !tolerant; ++j) filter(i, j, true, 1, left);
    for (int j = r; j <= n - r - 1; ++j) filter(i, j, true, -r, r);
    for (int j = n - 2 * r; j <= n - r - 1 && !tolerant; ++j) filter(i, j, true, 1 - left, -1);
  }

  void filter_columns(int r) const {
    const int c = last ? m - 2 * r : m;
    for (int i = 0; i < c + 2 * r; ++i) {
      const bool top = i < r;
      const bool bottom = i >= c + r;
      if (tolerant && (top || bottom)) continue;
      // The lower border begins r rows further up, where the middle has just ended.
      const int row = bottom ? i - r : i;
      for (int j = 0; j < n; ++j) {
        if (top) filter(row, j, false, 1, 2 * r);
        if (bottom) filter(row, j, false, -2 * r, -1);
        if (!top && !bottom) filter(row, j, false, -r, r);
      }
    }
  }

  void run(int taps) const {
    const int r = (taps - 1) / 2;
    for (int i = 0; i < m; ++i) filter_row(i, r, taps == 7 ? 10 : 15);
    filter_columns(r);
    naive_fill_grid(start, static_cast<uint16_t>(p.width), rows, static_cast<uint16_t>(p.stride),
                    number);
  }
};

}  // namespace

void naive_uv_denoise_strip(const T_UVDenoiseParam& param, uint32_t strip, int taps) {
  ChromaStrip{param, strip, false}.run(taps);
}

void naive_tolerant_denoise_strip(const T_UVDenoiseParam& param, uint32_t strip) {
  ChromaStrip{param, strip, true}.run(11);
}

void naive_fill_grid(uint8_t* start, int width, int rows, int stride, uint32_t strip) {
  const auto row = [&](int n) { return start + ptrdiff_t{n} * stride; };
  const auto fill = [](uint8_t* at, bool edge) {
    for (const int i : {0, 1}) {
      at[2 + i] = static_cast<uint8_t>((at[i] + at[4 + i]) / 2);
      at[6 + i] = edge ? at[4 + i] : static_cast<uint8_t>((at[4 + i] + at[8 + i]) / 2);
    }
  };
  const auto average = [](uint8_t* to, const uint8_t* a, const uint8_t* b, bool edge) {
    for (int i = 0; i < (edge ? 6 : 8); ++i) to[i] = static_cast<uint8_t>((a[i] + b[i]) / 2);
    for (int i = 6; i < 8 && edge; ++i) to[i] = to[i - 2];
  };
  const bool even = width % 8 == 0;
  const int blocks = width / 8 - (even ? 1 : 0);
  for (int x = 0; x < 8 * blocks; x += 8) fill(row(0) + x, false);
  const bool repeats = strip > 2 && rows % 4 == 0;
  const int groups = rows / 4 - (repeats ? 1 : 0);
  for (int g = 0; g < groups; ++g) {
    for (int b = 0; b < blocks + (even && width > 0 ? 1 : 0); ++b) {
      const bool edge = b == blocks;
      uint8_t* r[5];
      for (int i = 0; i < 5; ++i) r[i] = row(4 * g + i) + 8 * b;
      fill(r[2], edge);
      fill(r[4], edge);
      average(r[1], r[0], r[2], edge);
      average(r[3], r[2], r[4], edge);
    }
  }
  for (int i = 1; i < 4 && repeats && rows > 0; ++i) {
    std::copy_n(row(4 * groups), width / 8 * 8, row(4 * groups + i));
  }
}

}  // namespace zavri::testing
