#include "tools/tuning/judge.h"

extern "C" {
#include <libavutil/mem.h>
#include <libavutil/murmur3.h>
}

#include <cstdio>

namespace zavri::tools {

Judge::Judge(Frames frames, const Frame& clean, const Mask* moving) : by_clean_frame_(true) {
  Scorer scorer(clean, frames.front(), moving);
  before_ = scorer.before();
  moving_share_ = scorer.moving_share();
  cases_.push_back(std::make_unique<Case>(std::move(frames), std::move(scorer)));
}

Judge::Judge(const Frames& frames) : by_clean_frame_(false) {
  std::vector<Score> scores;
  for (size_t left_out = 0; left_out < frames.size(); ++left_out) {
    Frames others = frames;
    others.erase(others.begin() + static_cast<ptrdiff_t>(left_out));
    cases_.push_back(std::make_unique<Case>(std::move(others), Scorer(frames, left_out)));
    const Scorer& scorer = cases_.back()->scorer;
    scores.push_back(scorer.before());
    moving_share_ += scorer.moving_share() / static_cast<double>(frames.size());
  }
  before_ = mean_of(scores);
}

Verdict Judge::judge(const Operation& operation) {
  const auto* const denoise = dynamic_cast<const Denoise*>(&operation);
  Verdict verdict;
  std::vector<Score> scores;
  for (const auto& one : cases_) {
    Result result;
    if (denoise != nullptr) {
      result = one->runs.run(*denoise);
      scores.push_back(one->scorer.score(one->runs.merged()));
    } else {
      result = operation.run({one->frames.front()});
      scores.push_back(one->scorer.score(result.frame));
    }
    verdict.seconds += result.seconds / static_cast<double>(cases_.size());
  }
  if (denoise != nullptr) verdict.thresholds = denoise->used(size());
  verdict.score = mean_of(scores);
  return verdict;
}

std::string digest_of(const Frames& frames) {
  struct Free {
    void operator()(AVMurMur3* state) const { av_free(state); }
  };
  const std::unique_ptr<AVMurMur3, Free> state(av_murmur3_alloc());
  if (state == nullptr) throw std::bad_alloc();
  av_murmur3_init(state.get());
  for (const Frame& frame : frames) {
    const std::string size = frame.size();
    av_murmur3_update(state.get(), reinterpret_cast<const uint8_t*>(size.data()), size.size());
    av_murmur3_update(state.get(), frame.buffer().data(), frame.buffer().size());
  }
  uint8_t hash[16];
  av_murmur3_final(state.get(), hash);
  std::string text = "x";  // so that it is never taken for a number
  for (size_t k = 0; k < 8; ++k) {
    char byte[3];
    snprintf(byte, sizeof byte, "%02x", hash[k]);
    text += byte;
  }
  return text;
}

}  // namespace zavri::tools
