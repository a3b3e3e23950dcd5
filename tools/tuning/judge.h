#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/images/mask.h"
#include "tools/operations/denoise.h"
#include "tools/quality/score.h"

namespace zavri::tools {

// Tells what one run made of a burst.
struct Verdict {
  Score score;
  double seconds = 0;                    // in the library
  std::optional<Thresholds> thresholds;  // that the multi-frame denoise used
};

// Runs an operation with one setting after the other on a burst, and scores what it makes. Frames,
// their copies and what the score needs of them are made once.
class Judge {
 public:
  // Scores by the clean frame. Operations work on the first frame.
  Judge(Frames frames, const Frame& clean, const Mask* moving);
  // Scores by leaving each frame out in turn.
  explicit Judge(const Frames& frames);

  // Operations that take a single frame get the first one. Throws an Error as their check() does.
  Verdict judge(const Operation& operation);

  // Returns the score of the noisy frame.
  const Score& before() const { return before_; }
  Size size() const { return size_of(cases_.front()->frames.front()); }
  // Tells whether a part of the frames is known to move, so that ghosts can be told. Without a
  // mask, what differs by more than the noise in a few blocks may still be chance.
  bool moves() const { return moving_share_ > (by_clean_frame_ ? 0 : 0.005); }

 private:
  // A case gives one result that is scored; its members refer to each other.
  struct Case {
    Case(Frames merged, Scorer judged_by)
        : frames(std::move(merged)), scorer(std::move(judged_by)), runs(frames) {}

    Frames frames;
    Scorer scorer;
    DenoiseRuns runs;
  };

  std::vector<std::unique_ptr<Case>> cases_;
  Score before_;
  bool by_clean_frame_;
  double moving_share_ = 0;
};

// Returns a text that tells bursts apart by their bytes.
std::string digest_of(const Frames& frames);

}  // namespace zavri::tools
