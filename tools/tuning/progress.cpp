#include "tools/tuning/progress.h"

#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <utility>

namespace zavri::tools {

Progress::Progress(std::string what, size_t total, bool wanted)
    : what_(std::move(what)), total_(total), shows_(wanted && isatty(STDERR_FILENO) == 1) {}

Progress::~Progress() {
  if (shows_ && done_ > 0) fprintf(stderr, "\n");
}

void Progress::step(size_t count) {
  done_ += count;
  const Clock::time_point now = Clock::now();
  if (!shows_ || (done_ < total_ && now - told_ < std::chrono::milliseconds(200))) return;
  told_ = now;
  const double seconds = std::chrono::duration<double>(now - start_).count();
  const double left = seconds / static_cast<double>(done_) * static_cast<double>(total_ - done_);
  // The blanks cover the rest of a longer line before it.
  fprintf(stderr, "\r%s: %zu of %zu, %.0f s left   ", what_.c_str(), done_, total_,
          std::ceil(left));
}

}  // namespace zavri::tools
