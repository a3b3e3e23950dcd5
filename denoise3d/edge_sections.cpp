#include "denoise3d/edge_sections.h"

#include <algorithm>

namespace zavri {
namespace {

constexpr uint32_t even_up(uint32_t value) { return (value + 1) & ~1u; }
constexpr uint32_t even_down(uint32_t value) { return value & ~1u; }

constexpr int64_t kLowestThreshold = 2;

// The rest of a row is counted in 16 bits.
constexpr ptrdiff_t row_rest(uint32_t stride, uint32_t width) { return (stride - width) & 0xffff; }

}  // namespace

EdgeSections::EdgeSections(const T_3DYuvDenoiseParam& param) {
  const uint32_t width = param.width;
  const uint32_t quarter = width / 4;
  if (param.frame_num == 4) {
    bytes = even_up(quarter);
    right = static_cast<ptrdiff_t>(even_up(quarter) + width - even_down(width / 2));
    chroma_step = static_cast<ptrdiff_t>(param.uv_stride);
    luma_step = 2 * static_cast<ptrdiff_t>(param.y_stride);
  } else {
    // A cursor walks each row over the left section, the gap and the right section, which ends
    // `bytes` behind the width, and then on by what the stride has more than the width: each row
    // starts `bytes` further right than the one above.
    bytes = 2 * static_cast<size_t>(quarter);
    right = static_cast<ptrdiff_t>(width);
    const auto moved = static_cast<ptrdiff_t>(width + bytes);
    chroma_step = moved + row_rest(param.uv_stride, width);
    luma_step = moved + row_rest(2 * param.y_stride, width);
  }
}

const uint8_t* EdgeRamp::limits(size_t first, size_t count) {
  if (first != first_ || count != count_) {
    for (size_t i = 0; i < count; i += 2) limits_[i] = limits_[i + 1] = limit(first + i);
    first_ = first;
    count_ = count;
  }
  return limits_.data();
}

// quarter_ counts pairs and b bytes; edges are tuned with this mix. At a width of 4000 and a
// threshold of 16 the left section has 16 at byte 0, 8 at byte 500 and 2 from byte 813 on. The
// right section of 2 or 3 frames reaches twice the threshold, which may exceed a byte; a limit of
// 255 then accepts the same, because no difference is larger.
uint8_t EdgeRamp::limit(size_t b) const {
  const auto offset = static_cast<int64_t>(b);
  const int64_t distance = side_ == EdgeSide::kLeft ? quarter_ - offset : offset;
  const int64_t threshold = std::max(threshold_ * distance / quarter_, kLowestThreshold);
  return static_cast<uint8_t>(std::min<int64_t>(threshold - 1, 255));
}

}  // namespace zavri
