#include "tools/operations/resize.h"

#include <zavricustpro.h>

#include "tools/error.h"
#include "tools/images/raw_format.h"

namespace zavri::tools {
namespace {

// Counts the luma rows of the library's strips.
struct StripRows {
  explicit StripRows(int height)
      : each((height / 4 + 1) / 2 * 2), last(height - kZavriLastStrip * each) {}

  int each;  // of all but the last
  int last;
};

}  // namespace

Settings Resize::settings() {
  const auto parse = [this](const std::string& text) {
    const auto [width, height] = parse_size(text, "--to");
    to = {width, height};
    return true;
  };
  return {
      {"to", "WxH", "size of the result, not below the input's", parse,
       [this] { return to.width == 0 ? "" : to.text(); }},
      choice<Scaling>("mode", scaling, {{"poly", Scaling::kPoly}, {"bilinear", Scaling::kBilinear}},
                      "the scaler")};
}

// The library refuses sizes below the frame's itself. At heights of 4, 5, 6 and 12 it writes where
// nothing is, or leaves rows unwritten.
void Resize::check(const Size& size, int frames) const {
  check_count(frames);
  if (to.width == 0) throw Error("--to: is needed, such as 3840x2160");
  const std::string what = size.text() + " to " + to.text() + ": ";
  if (to.width < size.width || to.height < size.height) {
    throw Error(what + "the library only enlarges", kRefused);
  }
  const StripRows source(size.height);
  const StripRows target(to.height);
  if (source.last < 0 || target.last < 0) {
    throw Error(what + "three of the library's strips are higher than a frame of 4 rows", kRefused);
  }
  if ((source.each == 0 && target.each != 0) || (source.last == 0 && target.last != 0)) {
    throw Error(what + "one of the library's strips has rows in the result alone", kRefused);
  }
}

Result Resize::run(const Frames& frames, int runs) const {
  const Frame& frame = frames.front();
  check(size_of(frame), static_cast<int>(frames.size()));
  expect_stride(frame, UINT16_MAX, "a frame is resized with");
  const size_t stride = std::max(frame.layout().stride, static_cast<size_t>(to.width));
  const size_t luma = stride * static_cast<size_t>(to.height);
  Result result;
  result.frame = Frame(to.width, to.height, frame.order(), {stride, luma, luma + luma / 2});
  T_ResizeParam param{};
  param.scale_mode = static_cast<uint16_t>(scaling);
  param.src_width = static_cast<uint16_t>(frame.width());
  param.src_height = static_cast<uint16_t>(frame.height());
  param.src_stride = static_cast<uint16_t>(frame.layout().stride);
  param.src_y = frame.luma_row(0);
  param.src_uv = frame.chroma_row(0);
  param.dst_width = static_cast<uint16_t>(to.width);
  param.dst_height = static_cast<uint16_t>(to.height);
  param.dst_stride = static_cast<uint16_t>(stride);
  param.dst_y = result.frame.luma_row(0);
  param.dst_uv = result.frame.chroma_row(0);
  result.seconds = median_seconds(
      runs, [] {}, [&] { expect_accepted(zavri_mp_resize_process(&param)); });
  if (frame.height() != to.height && (frame.height() % 8 != 0 || to.height % 8 != 0)) {
    result.remarks = {
        "heights that are not multiples of 8: strips are scaled one by one, and rows "
        "shift at their borders"};
  }
  return result;
}

}  // namespace zavri::tools
