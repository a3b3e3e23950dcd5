#include "tools/report/noise_plots.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "tools/quality/blocks.h"

namespace zavri::tools {
namespace {

constexpr int kLevelStep = 8;
constexpr size_t kFewestBlocks = 64;

// A block of the target, and how far a frame is from it.
struct Seen {
  double detail;
  double difference;  // mean square
};
using SeenByLevel = std::array<std::vector<Seen>, 256 / kLevelStep>;

// The median difference of the quarter with least detail: what moves there does not count.
double typical_difference(std::vector<Seen>& seen) {
  std::sort(seen.begin(), seen.end(),
            [](const Seen& a, const Seen& b) { return a.detail < b.detail; });
  seen.resize(seen.size() / 4);
  const auto middle = seen.begin() + static_cast<ptrdiff_t>(seen.size() / 2);
  std::nth_element(seen.begin(), middle, seen.end(),
                   [](const Seen& a, const Seen& b) { return a.difference < b.difference; });
  return middle->difference;
}

// The variance that the target's own noise adds.
double floor_at(const NoiseFit* fit, bool is_luma, double level) {
  if (fit == nullptr) return 0;
  if (is_luma) return (*fit)[0].variance(level);
  return ((*fit)[1].variance(level) + (*fit)[2].variance(level)) / 2;
}

PageSeries measure(const char* name, const Frame& target, const Frame& frame, const Frame& scene,
                   bool is_luma, const NoiseFit* fit) {
  const auto plane_of = is_luma ? BlockPlane::luma_of : BlockPlane::chroma_of;
  const BlockPlane luma = BlockPlane::luma_of(target);
  const Frame same_order = frame.with_order(target.order());
  SeenByLevel by_level;
  for (const Block& block : all_blocks(target)) {
    by_level[static_cast<size_t>(level_of(luma, block)) / kLevelStep].push_back(
        {detail_of(BlockPlane::luma_of(scene), block),
         mean_square_difference(plane_of(target), plane_of(same_order), block)});
  }
  PageSeries series{name, PageMark::kLine, {}, {}};
  for (size_t k = 0; k < by_level.size(); ++k) {
    if (by_level[k].size() < kFewestBlocks) continue;
    const double level = kLevelStep * (static_cast<double>(k) + 0.5);
    const double variance = typical_difference(by_level[k]) - floor_at(fit, is_luma, level);
    series.x.push_back(level);
    series.y.push_back(std::sqrt(std::max(0.0, variance)));
  }
  return series;
}

}  // namespace

std::vector<PagePlot> noise_by_level(const Frame& target, const Frame& before, const Frame& after,
                                     const NoiseFit* fit) {
  // A noisy target must not choose blocks by its own noise.
  const Frame& scene = fit == nullptr ? target : after;
  std::vector<PagePlot> plots;
  for (const bool is_luma : {true, false}) {
    const PageSeries made = measure("after", target, after, scene, is_luma, fit);
    if (made.x.empty()) continue;  // the frame is too small
    PageSeries noisy = measure("before", target, before, scene, is_luma, fit);
    noisy.baseline = true;
    plots.push_back({std::string("Noise by level, ") + (is_luma ? "luma" : "chroma"),
                     "In flat parts, as a standard deviation.",
                     {"Level of luma", ""},
                     {"Noise", "levels", true},
                     {made, noisy}});
  }
  return plots;
}

PagePlot fitted_noise(const NoiseFit& fit) {
  PagePlot plot{"Noise by level",
                "Points are measured, lines are fitted.",
                {"Level of luma", ""},
                {"Variance", "levels²", true},
                {}};
  for (size_t k = 0; k < fit.size(); ++k) {
    const std::string name(1, static_cast<char>(std::toupper(kPlaneNames[k][0])));
    PageSeries points{name + " measured", PageMark::kPoints, {}, {}};
    PageSeries line{name + " fitted", PageMark::kLine, {}, {}};
    line.follows = true;
    for (const NoiseLevel& level : fit[k].levels) {
      points.x.push_back(level.level);
      points.y.push_back(level.variance);
      points.labels.push_back(std::to_string(level.blocks) + " blocks");
      line.x.push_back(level.level);
      line.y.push_back(fit[k].line.variance(level.level));
    }
    plot.series.push_back(points);
    plot.series.push_back(line);
  }
  return plot;
}

}  // namespace zavri::tools
