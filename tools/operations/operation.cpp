#include "tools/operations/operation.h"

#include <zavricustpro.h>

#include <algorithm>

#include "tools/error.h"

namespace zavri::tools {

void copy_picture(const Frame& from, Frame& to) {
  if (from.order() != to.order()) return copy_picture(from.with_order(to.order()), to);
  const Layout& source = from.layout();
  const Layout& target = to.layout();
  if (source.stride == target.stride && source.chroma_at == target.chroma_at) {
    // The padding is copied as well, since a call may read it.
    std::copy_n(from.buffer().begin(), std::min(source.bytes, target.bytes), to.buffer().begin());
    return;
  }
  for (int y = 0; y < to.height(); ++y) std::copy_n(from.luma_row(y), to.width(), to.luma_row(y));
  for (int y = 0; y < to.height() / 2; ++y) {
    std::copy_n(from.chroma_row(y), to.width(), to.chroma_row(y));
  }
}

Frame roomy_copy(const Frame& picture, const Frame& like, const Room& room) {
  Layout layout = like.layout();
  if (!layout.fixed) layout.chroma_at = std::max(layout.chroma_at + room.before_chroma, room.luma);
  layout.bytes = std::max({layout.bytes, room.luma, layout.chroma_at + room.chroma});
  Frame copy(like.width(), like.height(), like.order(), layout);
  copy_picture(picture, copy);
  return copy;
}

void Operation::check_count(int frames) const {
  const auto [least, most] = takes();
  if (frames >= least && frames <= most) return;
  throw Error(std::to_string(frames) + (frames == 1 ? " frame, where " : " frames, where ") +
              (least == most ? "" : std::to_string(least) + " to ") + std::to_string(most) +
              (most == 1 ? " is taken" : " are taken"));
}

void expect_one_size(const Frames& frames) {
  for (const Frame& frame : frames) {
    if (size_of(frame) == size_of(frames.front())) continue;
    throw Error("frames of " + frames.front().size() + " and " + frame.size() +
                ": all frames must have one size");
  }
}

void expect_stride(const Frame& frame, size_t most, const char* what) {
  if (frame.layout().stride <= most) return;
  throw Error("--stride " + std::to_string(frame.layout().stride) + ": " + what + " at most " +
              std::to_string(most));
}

void expect_accepted(uint32_t code) {
  if (code == 0) return;
  throw Error("the library refused the frames with code " + std::to_string(code), kRefused);
}

void start_pool() {
  if (HALThreadPoolInit() != 0) throw Error("the library cannot start its threads", kRefused);
}

}  // namespace zavri::tools
