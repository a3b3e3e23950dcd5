#include "tools/quality/score.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

#include "tools/error.h"
#include "tools/sensor/noise_fit.h"

namespace zavri::tools {
namespace {

// Flat and textured parts are these shares of the still blocks, by their detail.
constexpr double kFlatShare = 0.25;
constexpr double kTexturedShare = 0.25;

// Outside of these levels sensors clip, and a block is flat because nothing is left of it.
constexpr double kDarkest = 16;
constexpr double kBrightest = 239;

// Returns the improvement in dB. It is infinite where nothing is left of an error that there was.
double improvement(double before, double after) {
  if (after > 0) return 10 * std::log10(before / after);
  return before > 0 ? std::numeric_limits<double>::infinity() : 0;
}

// Returns the value that this share of the values does not exceed.
double quantile(std::vector<double> values, double share) {
  const auto last = static_cast<double>(values.size() - 1);
  const auto at = values.begin() + static_cast<ptrdiff_t>(std::lround(share * last));
  std::nth_element(values.begin(), at, values.end());
  return *at;
}

// Returns the mean of frames of one size, rounded.
Frame mean_of(const std::vector<Frame>& frames) {
  Frame mean(frames[0].width(), frames[0].height(), frames[0].order());
  const auto count = static_cast<int>(frames.size());
  const auto fill = [&](uint8_t* to, auto row_of) {
    for (int x = 0; x < mean.width(); ++x) {
      int sum = count / 2;
      for (const Frame& frame : frames) sum += row_of(frame)[x];
      to[x] = static_cast<uint8_t>(sum / count);
    }
  };
  for (int y = 0; y < mean.height(); ++y) {
    fill(mean.luma_row(y), [=](const Frame& frame) { return frame.luma_row(y); });
  }
  for (int y = 0; y < mean.height() / 2; ++y) {
    fill(mean.chroma_row(y), [=](const Frame& frame) { return frame.chroma_row(y); });
  }
  return mean;
}

// Tells whether all frames differ from the first in a block by no more than their noise. The mean
// square of 64 differences spreads by sqrt(2 / 64) of its mean; four times that is left to chance.
class StillTest {
 public:
  explicit StillTest(const std::vector<Frame>& frames) : frames_(frames) {
    const PlaneNoise noise = fit_plane_noise(frames, 0);
    for (size_t level = 0; level < most_.size(); ++level) {
      most_[level] = 2 * (noise.variance(static_cast<double>(level)) + kRounding) * kTolerance;
    }
  }

  bool operator()(const Block& block) const {
    const BlockPlane first = BlockPlane::luma_of(frames_[0]);
    const double most = most_[static_cast<size_t>(level_of(first, block))];
    return std::all_of(frames_.begin() + 1, frames_.end(), [&](const Frame& frame) {
      return mean_square_difference(first, BlockPlane::luma_of(frame), block) <= most;
    });
  }

 private:
  static constexpr double kRounding = 1.0 / 12;
  static constexpr double kTolerance = 1 + 4 * 0.177;

  const std::vector<Frame>& frames_;
  std::array<double, 256> most_;
};

}  // namespace

Score mean_of(const std::vector<Score>& scores) {
  Score mean;
  for (PlaneScore Score::*plane : {&Score::luma, &Score::chroma}) {
    int moving = 0;
    double ghosts = 0;
    for (const Score& score : scores) {
      const PlaneScore& part = score.*plane;
      (mean.*plane).noise_removed += part.noise_removed / static_cast<double>(scores.size());
      (mean.*plane).texture_psnr += part.texture_psnr / static_cast<double>(scores.size());
      if (!part.ghost_error) continue;
      ++moving;
      ghosts += *part.ghost_error;
    }
    if (moving > 0) (mean.*plane).ghost_error = ghosts / moving;
  }
  return mean;
}

Scorer::Scorer(const Frame& clean, const Frame& noisy, const Mask* moving) : target_(clean) {
  Blocks still;
  for (const Block& block : all_blocks(clean)) {
    const bool moves =
        moving != nullptr &&
        moving->touches(block.x * kBlockSide, block.y * kBlockSide, kBlockSide, kBlockSide);
    (moves ? moving_ : still).push_back(block);
  }
  if (still.empty()) throw Error("the score needs blocks of 8x8 pixels where nothing moves");
  divide(clean, still);
  const Frame before = in_target_order(noisy);
  for (Parts* parts : {&luma_, &chroma_}) {
    parts->noise =
        mean_square_difference(parts->plane_of(target_), parts->plane_of(before), parts->flat);
  }
  before_ = score(noisy);
}

Scorer::Scorer(const std::vector<Frame>& frames, size_t left_out) : target_(frames[left_out]) {
  if (frames.size() < 3) throw Error("leaving a frame out needs three frames at least");
  std::vector<Frame> burst;
  burst.reserve(frames.size());
  for (const Frame& frame : frames) burst.push_back(in_target_order(frame));
  reference_ = burst[left_out == 0 ? 1 : 0];
  const StillTest is_still(burst);
  Blocks still;
  for (const Block& block : all_blocks(target_)) {
    (is_still(block) ? still : moving_).push_back(block);
  }
  if (still.empty()) throw Error("no part of the burst is still");
  // The mean of the frames leaves nothing of the noise in which they differ, so that the choice of
  // blocks by it does not favour blocks with less of that noise.
  divide(mean_of(burst), still);
  for (Parts* parts : {&luma_, &chroma_}) {
    const auto half_difference = [&](const Blocks& blocks) {
      return mean_square_difference(parts->plane_of(target_), parts->plane_of(*reference_),
                                    blocks) /
             2;
    };
    parts->flat_floor = parts->noise = half_difference(parts->flat);
    parts->textured_floor = half_difference(parts->textured);
  }
  before_ = score(*reference_);
}

Frame Scorer::in_target_order(const Frame& frame) const {
  expect_size(frame);
  return frame.with_order(target_.order());
}

void Scorer::expect_size(const Frame& frame) const {
  if (frame.size() == target_.size()) return;
  throw Error("a frame of " + frame.size() + " cannot be judged by one of " + target_.size());
}

void Scorer::divide(const Frame& scene, const Blocks& still) {
  moving_share_ =
      static_cast<double>(moving_.size()) / static_cast<double>(moving_.size() + still.size());
  const BlockPlane luma = BlockPlane::luma_of(scene);
  for (Parts* parts : {&luma_, &chroma_}) {
    std::vector<double> details;
    for (const Block& block : still) details.push_back(detail_of(parts->plane_of(scene), block));
    const double flat = quantile(details, kFlatShare);
    const double textured = quantile(details, 1 - kTexturedShare);
    for (size_t i = 0; i < still.size(); ++i) {
      if (details[i] >= textured) parts->textured.push_back(still[i]);
      const double level = level_of(luma, still[i]);
      const bool clips = level < kDarkest || level > kBrightest;
      if (details[i] <= flat && !clips) parts->flat.push_back(still[i]);
    }
  }
}

Score Scorer::score(const Frame& result) const {
  expect_size(result);
  if (result.order() != target_.order()) return score(in_target_order(result));
  return {score_parts(luma_, result), score_parts(chroma_, result)};
}

PlaneScore Scorer::score_parts(const Parts& parts, const Frame& result) const {
  const BlockPlane target = parts.plane_of(target_);
  const BlockPlane plane = parts.plane_of(result);
  PlaneScore score;
  score.noise_removed = improvement(
      parts.noise, mean_square_difference(target, plane, parts.flat) - parts.flat_floor);
  const double texture_error = mean_square_difference(target, plane, parts.textured);
  score.texture_psnr = improvement(255.0 * 255.0, texture_error - parts.textured_floor);
  if (!moving_.empty()) {
    const BlockPlane reference = reference_ ? parts.plane_of(*reference_) : target;
    score.ghost_error = std::sqrt(coarse_mean_square(reference, plane, moving_));
  }
  return score;
}

Score score_by_leaving_out(const std::vector<Frame>& frames,
                           const std::function<Frame(const std::vector<Frame>&)>& denoise) {
  std::vector<Score> scores;
  for (size_t left_out = 0; left_out < frames.size(); ++left_out) {
    const Scorer scorer(frames, left_out);
    std::vector<Frame> others = frames;
    others.erase(others.begin() + static_cast<ptrdiff_t>(left_out));
    scores.push_back(scorer.score(denoise(others)));
  }
  return mean_of(scores);
}

}  // namespace zavri::tools
