#include "tools/report/agreement.h"

#include <array>
#include <cstdlib>

#include "tools/images/encode.h"

namespace zavri::tools {
namespace {

constexpr int kMostOthers = 3;

// The merge works on squares of 2x2 pixels: one chroma pair, and the luma of the left top one.
struct Square {
  int chroma = 0;  // frames that agree
  int luma = 0;    // the same number, or 0 where the mean luma is too far off
};

Square count_agreeing(const std::vector<Frame>& frames, const MergeRule& rule, int x, int y) {
  const Frame& reference = frames[rule.reference];
  const uint8_t* const uv = reference.chroma_row(y) + 2 * x;
  const int luma = reference.luma_row(2 * y)[2 * x];
  Square square;
  int sum = luma;
  for (size_t k = 0; k < frames.size(); ++k) {
    if (k == rule.reference) continue;
    const uint8_t* const other = frames[k].chroma_row(y) + 2 * x;
    if (std::abs(other[0] - uv[0]) >= rule.thresh) continue;
    if (std::abs(other[1] - uv[1]) >= rule.thresh) continue;
    ++square.chroma;
    sum += frames[k].luma_row(2 * y)[2 * x];
  }
  const double mean = static_cast<double>(sum) / (1 + square.chroma);
  if (std::abs(mean - luma) < rule.thresh_luma) square.luma = square.chroma;
  return square;
}

// The map of one plane while it is drawn.
class Map {
 public:
  Map(int width, int height) : picture_(width, height) {}

  void set(int x, int y, int count) {
    const size_t at =
        3 * (static_cast<size_t>(y) * static_cast<size_t>(picture_.width) + static_cast<size_t>(x));
    for (size_t k = 0; k < 3; ++k) picture_.rgb[at + k] = agreement_grey(count);
    ++counts_[static_cast<size_t>(count)];
  }

  PageAgreement finish(const char* caption, size_t others) const {
    const Picture small = shrunk(picture_, kPagePartWidth);
    PageAgreement made{caption, encode(small, ".png"), small.width, small.height, {}};
    const double places = static_cast<double>(picture_.width) * picture_.height;
    for (size_t count = 0; count <= others; ++count) {
      made.shares.push_back(100 * static_cast<double>(counts_[count]) / places);
    }
    return made;
  }

 private:
  Picture picture_;
  std::array<int64_t, kMostOthers + 1> counts_{};
};

}  // namespace

std::vector<PageAgreement> agreements(const std::vector<Frame>& frames, const MergeRule& rule) {
  const Frame& reference = frames[rule.reference];
  std::vector<Frame> alike;
  alike.reserve(frames.size());
  for (const Frame& frame : frames) alike.push_back(frame.with_order(reference.order()));
  const int width = reference.width() / 2;
  const int height = reference.height() / 2;
  Map chroma(width, height);
  Map luma(width, height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const Square square = count_agreeing(alike, rule, x, y);
      chroma.set(x, y, square.chroma);
      luma.set(x, y, square.luma);
    }
  }
  std::vector<PageAgreement> made{chroma.finish("Chroma", frames.size() - 1)};
  if (rule.merges_luma) made.push_back(luma.finish("Luma", frames.size() - 1));
  return made;
}

}  // namespace zavri::tools
