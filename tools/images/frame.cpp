#include "tools/images/frame.h"

#include <algorithm>
#include <utility>

namespace zavri::tools {
namespace {

Layout tight_layout(int width, int height) {
  const auto stride = static_cast<size_t>(width);
  const size_t luma = stride * static_cast<size_t>(height);
  return {stride, luma, luma + luma / 2};
}

}  // namespace

Frame::Frame(int width, int height, ChromaOrder order)
    : Frame(width, height, order, tight_layout(width, height)) {}

Frame::Frame(int width, int height, ChromaOrder order, const Layout& layout)
    : Frame(width, height, order, layout, std::vector<uint8_t>(layout.bytes)) {}

Frame::Frame(int width, int height, ChromaOrder order, const Layout& layout,
             std::vector<uint8_t> buffer)
    : width_(width), height_(height), order_(order), layout_(layout), buffer_(std::move(buffer)) {}

Frame Frame::crop(int x, int y, int crop_width, int crop_height) const {
  Frame part(crop_width, crop_height, order_);
  for (int row = 0; row < crop_height; ++row) {
    std::copy_n(luma_row(y + row) + x, crop_width, part.luma_row(row));
  }
  for (int row = 0; row < crop_height / 2; ++row) {
    std::copy_n(chroma_row(y / 2 + row) + x, crop_width, part.chroma_row(row));
  }
  return part;
}

Frame Frame::with_order(ChromaOrder order) const {
  Frame frame = *this;
  if (order == order_) return frame;
  frame.order_ = order;
  for (int y = 0; y < height_ / 2; ++y) {
    uint8_t* const row = frame.chroma_row(y);
    for (int x = 0; x < width_; x += 2) std::swap(row[x], row[x + 1]);
  }
  return frame;
}

Picture::Picture(int picture_width, int picture_height)
    : width(picture_width),
      height(picture_height),
      rgb(3 * static_cast<size_t>(width) * static_cast<size_t>(height)) {}

}  // namespace zavri::tools
