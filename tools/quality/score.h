#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "tools/images/frame.h"
#include "tools/images/mask.h"
#include "tools/quality/blocks.h"

namespace zavri::tools {

// Three numbers that judge a denoised frame together, because each alone can be had at the price of
// another; docs/score.md derives them.
struct PlaneScore {
  double noise_removed = 0;           // dB, in flat parts
  double texture_psnr = 0;            // dB, in the parts with most detail
  std::optional<double> ghost_error;  // levels, in moving parts; none where nothing moves
};

struct Score {
  PlaneScore luma;
  PlaneScore chroma;  // of U and V together
};

// The mean of each number, of ghost errors over those scores that have one.
Score mean_of(const std::vector<Score>& scores);

// Judges results of one burst. What depends on the burst alone is worked out once, so that a
// score() of 12 megapixels takes milliseconds; several threads may call it at once.
class Scorer {
 public:
  // Judges by the clean frame; `noisy` is the frame that was denoised. Throws an Error unless all
  // have one size and the mask leaves blocks of 8x8 pixels free.
  Scorer(const Frame& clean, const Frame& noisy, const Mask* moving = nullptr);

  // Judges without a clean frame: results are made of all frames but `left_out`, the first of which
  // is the one that was denoised. Where the burst is still, results are held against the frame left
  // out; where it moves, against the one that was denoised. Throws an Error unless there are three
  // frames of one size that are still somewhere.
  Scorer(const std::vector<Frame>& frames, size_t left_out);

  // Throws an Error unless the result has the frames' size.
  Score score(const Frame& result) const;

  // Returns the score of the noisy frame itself.
  const Score& before() const { return before_; }

  // Returns the share of blocks in which something moves.
  double moving_share() const { return moving_share_; }

 private:
  // Holds the blocks of luma or of chroma by what they are judged for.
  struct Parts {
    BlockPlane (*plane_of)(const Frame& frame);
    Blocks flat = {};
    Blocks textured = {};
    double noise = 0;  // mean square, in flat parts of the noisy frame
    // The target's own noise has these mean squares.
    double flat_floor = 0;
    double textured_floor = 0;
  };

  void expect_size(const Frame& frame) const;
  Frame in_target_order(const Frame& frame) const;
  // Divides the still blocks by the detail of the scene.
  void divide(const Frame& scene, const Blocks& still);
  PlaneScore score_parts(const Parts& parts, const Frame& result) const;

  Frame target_;                    // what still parts are held against
  std::optional<Frame> reference_;  // what moving parts are held against, unless the target
  Parts luma_{BlockPlane::luma_of};
  Parts chroma_{BlockPlane::chroma_of};
  Blocks moving_;
  double moving_share_ = 0;
  Score before_;
};

// Returns the mean score of leaving each frame out in turn; denoise() merges frames with the first
// of them as reference.
Score score_by_leaving_out(const std::vector<Frame>& frames,
                           const std::function<Frame(const std::vector<Frame>&)>& denoise);

}  // namespace zavri::tools
