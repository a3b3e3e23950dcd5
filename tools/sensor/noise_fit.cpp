#include "tools/sensor/noise_fit.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <utility>

#include "tools/error.h"

namespace zavri::tools {
namespace {

// Blocks of one plane are 8x8 samples.
constexpr int kSide = 8;
constexpr int kSamples = kSide * kSide;

constexpr int kBins = 32;
constexpr int kBinWidth = 256 / kBins;
constexpr size_t kFewestBlocks = 40;

using Block = std::array<int, kSamples>;

// A plane is one of Y, U and V of a frame.
struct Plane {
  Plane(const Frame& frame, int index)
      : first(frame.luma_row(0)), stride(frame.layout().stride), step(index == 0 ? 1 : 2) {
    if (index == 0) return;
    const bool comes_first = (index == 1) == (frame.order() == ChromaOrder::kUv);
    first = frame.chroma_row(0) + (comes_first ? 0 : 1);
  }

  Block block(int left, int top) const {
    Block samples;
    int* to = samples.data();
    const uint8_t* row = first + static_cast<size_t>(top) * stride;
    for (int y = 0; y < kSide; ++y, row += stride) {
      for (int x = 0; x < kSide; ++x) *to++ = row[(left + x) * step];
    }
    return samples;
  }

  const uint8_t* first;
  size_t stride;
  int step;  // from sample to sample, which is also the subsampling
};

// Sums the squares of what is left of kGrid x kGrid values after a plane a + bx + cy is taken out:
// gradients are no noise, and what flicker adds to a block is nearly such a plane.
template <int kGrid>
double residual_squares(const int* values) {
  int sum = 0, squares = 0, across = 0, down = 0;
  for (int y = 0; y < kGrid; ++y) {
    for (int x = 0; x < kGrid; ++x) {
      const int value = values[y * kGrid + x];
      sum += value;
      squares += value * value;
      across += value * (2 * x - (kGrid - 1));
      down += value * (2 * y - (kGrid - 1));
    }
  }
  constexpr double kSize = kGrid * kGrid;
  constexpr double kSlopeSquares = kSize * (kGrid * kGrid - 1) / 3;
  const auto squared = [](double value) { return value * value; };
  return squares - squared(sum) / kSize - (squared(across) + squared(down)) / kSlopeSquares;
}

// Holds what a block tells. White noise in one number says nothing of that in the other, so that
// the choice of blocks with little detail does not favour blocks with little noise.
struct Measured {
  float level;     // of the luma at the place
  float detail;    // grows with the texture
  float variance;  // of the noise, as far as there is no texture
};

// The variances of measure() have these degrees of freedom.
constexpr int kOneFrameFreedom = kSamples - kSamples / 4;
constexpr int kTwoFramesFreedom = kSamples - 3;

// Measures a block of one frame: the sums of 2x2 samples show its texture, and the differences
// within them its noise.
Measured measure(double level, const Block& block) {
  std::array<int, kSamples / 4> sums{};
  for (size_t i = 0; i < kSamples; ++i) {
    sums[i / (2 * kSide) * (kSide / 2) + i % kSide / 2] += block[i];
  }
  const double coarse = residual_squares<kSide / 2>(sums.data()) / 4;
  const double fine = residual_squares<kSide>(block.data()) - coarse;
  return {static_cast<float>(level), static_cast<float>(coarse),
          static_cast<float>(fine / kOneFrameFreedom)};
}

// Measures a block of two frames: their sum shows its texture, and their difference its noise.
Measured measure(double level, const Block& block, const Block& next) {
  Block sum;
  Block difference;
  for (size_t i = 0; i < kSamples; ++i) {
    sum[i] = block[i] + next[i];
    difference[i] = block[i] - next[i];
  }
  return {static_cast<float>(level), static_cast<float>(residual_squares<kSide>(sum.data())),
          static_cast<float>(residual_squares<kSide>(difference.data()) / kTwoFramesFreedom / 2)};
}

// A bin holds what blocks of about one level told.
struct Bin {
  std::vector<Measured> blocks;
  int64_t clipped = 0;  // samples
};
using Bins = std::array<Bin, kBins>;

double mean_of(const Block& block) {
  return static_cast<double>(std::accumulate(block.begin(), block.end(), 0)) / kSamples;
}

// Returns the mean luma where a plane's block is.
double level_at(const Plane& luma, int left, int top, int step) {
  double sum = 0;
  for (int y = 0; y < step; ++y) {
    for (int x = 0; x < step; ++x) {
      sum += mean_of(luma.block(step * left + kSide * x, step * top + kSide * y));
    }
  }
  return sum / (step * step);
}

// Measures all blocks of a plane: alone, or together with those of the next frame.
void add_blocks(const Frame& frame, const Frame* next, int index, Bins& bins) {
  const Plane luma(frame, 0);
  const Plane plane(frame, index);
  for (int top = 0; top + kSide <= frame.height() / plane.step; top += kSide) {
    for (int left = 0; left + kSide <= frame.width() / plane.step; left += kSide) {
      const Block block = plane.block(left, top);
      const double level = plane.step == 1 ? mean_of(block) : level_at(luma, left, top, plane.step);
      Bin& bin = bins[static_cast<size_t>(level) / kBinWidth];
      bin.clipped += std::count_if(block.begin(), block.end(),
                                   [](int sample) { return sample == 0 || sample == 255; });
      bin.blocks.push_back(next == nullptr
                               ? measure(level, block)
                               : measure(level, block, Plane(*next, index).block(left, top)));
    }
  }
}

std::vector<Measured> least_detailed(std::vector<Measured> blocks, size_t count) {
  std::nth_element(blocks.begin(), blocks.begin() + static_cast<ptrdiff_t>(count) - 1, blocks.end(),
                   [](const Measured& a, const Measured& b) { return a.detail < b.detail; });
  blocks.resize(count);
  return blocks;
}

// Returns the variance on which most of the bin's flattest blocks agree; `spread` is that of one
// block, as a share. Texture and motion only add, so that the search begins low.
NoiseLevel agreed_level(Bin& bin, double spread) {
  const size_t flattest = std::max(kFewestBlocks, bin.blocks.size() / 10);
  bin.blocks = least_detailed(std::move(bin.blocks), flattest);
  std::vector<double> variances;
  double level = 0;
  for (const Measured& block : bin.blocks) {
    variances.push_back(block.variance);
    level += block.level / static_cast<double>(flattest);
  }
  std::sort(variances.begin(), variances.end());
  double variance = variances[variances.size() / 20];
  int blocks = 0;
  double squares = 0;
  for (int step = 0; step < 50; ++step) {
    const double width = 2.5 * spread * variance;
    const auto begin = std::lower_bound(variances.begin(), variances.end(), variance - width);
    const auto end = std::upper_bound(begin, variances.end(), variance + width);
    if (begin == end) break;
    blocks = static_cast<int>(end - begin);
    variance = std::accumulate(begin, end, 0.0) / blocks;
    squares = std::inner_product(begin, end, begin, 0.0);
  }
  // An error that is even over [-1/2, 1/2] has this variance.
  constexpr double kRounding = 1.0 / 12;
  const double scatter = std::sqrt(std::max(0.0, squares / blocks / (variance * variance) - 1));
  // The scatter of few blocks differs from their spread by chance alone.
  const double chance = 1.5 / std::sqrt(2.0 * std::max(1, blocks));
  const double doubt = 2 * std::max(0.0, scatter / spread - 1 - chance);
  return {level, std::max(0.0, variance - kRounding), blocks, doubt};
}

// Fits by least squares. A level counts by how well its blocks tell the variance, but no better
// than to 5 %: noise is a line only nearly, and one level must not decide alone.
NoiseLine fit_line(const std::vector<NoiseLevel>& levels) {
  constexpr double kModelError = 0.05;
  double n = 0, x = 0, y = 0, xx = 0, xy = 0;
  for (const NoiseLevel& level : levels) {
    const double relative = kModelError * kModelError + level.doubt * level.doubt +
                            2.0 / kSamples / std::max(1, level.blocks);
    const double weight = 1 / (relative * std::max(1e-6, level.variance * level.variance));
    n += weight;
    x += weight * level.level;
    y += weight * level.variance;
    xx += weight * level.level * level.level;
    xy += weight * level.level * level.variance;
  }
  const double spread = n * xx - x * x;
  // One level alone has no slope.
  const double a = spread > 1e-9 * n * xx ? (n * xy - x * y) / spread : 0;
  return {a, (y - a * x) / n};
}

}  // namespace

double PlaneNoise::variance(double level) const {
  const auto above = std::find_if(levels.begin(), levels.end(),
                                  [=](const NoiseLevel& l) { return l.level >= level; });
  if (above == levels.begin()) return levels.front().variance;
  if (above == levels.end()) return levels.back().variance;
  const NoiseLevel& below = *(above - 1);
  const double share = (level - below.level) / (above->level - below.level);
  return below.variance + share * (above->variance - below.variance);
}

PlaneNoise fit_plane_noise(const std::vector<Frame>& frames, int index) {
  Bins bins;
  const bool alone = frames.size() == 1;
  if (alone) add_blocks(frames[0], nullptr, index, bins);
  for (size_t k = 0; k + 1 < frames.size(); ++k) add_blocks(frames[k], &frames[k + 1], index, bins);
  PlaneNoise noise;
  for (Bin& bin : bins) {
    constexpr double kMostClipped = 0.001;
    const double samples = static_cast<double>(bin.blocks.size()) * kSamples;
    if (bin.blocks.size() < kFewestBlocks) continue;
    if (static_cast<double>(bin.clipped) > kMostClipped * samples) continue;
    noise.levels.push_back(
        agreed_level(bin, std::sqrt(2.0 / (alone ? kOneFrameFreedom : kTwoFramesFreedom))));
  }
  if (noise.levels.empty()) {
    throw Error("the frames have too few flat or still parts to fit their noise");
  }
  noise.line = fit_line(noise.levels);
  return noise;
}

NoiseFit fit_noise(const std::vector<Frame>& frames) {
  return {fit_plane_noise(frames, 0), fit_plane_noise(frames, 1), fit_plane_noise(frames, 2)};
}

NoiseProfile profile_of(const NoiseFit& fit) { return {fit[0].line, fit[1].line, fit[2].line}; }

}  // namespace zavri::tools
