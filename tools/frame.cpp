#include "tools/frame.h"

#include <algorithm>
#include <cmath>

#include "tools/colour.h"
#include "tools/rows.h"

namespace zavri::tools {
namespace {

size_t area(int width, int height) {
  return static_cast<size_t>(width) * static_cast<size_t>(height);
}

}  // namespace

Frame::Frame(int frame_width, int frame_height, ChromaOrder chroma_order)
    : width(frame_width),
      height(frame_height),
      order(chroma_order),
      luma(area(width, height)),
      chroma(area(width, height) / 2) {}

Frame Frame::with_u_first() const {
  Frame frame = *this;
  if (order == ChromaOrder::kUv) return frame;
  frame.order = ChromaOrder::kUv;
  for (size_t i = 0; i < frame.chroma.size(); i += 2) {
    std::swap(frame.chroma[i], frame.chroma[i + 1]);
  }
  return frame;
}

Frame Frame::crop(int x, int y, int crop_width, int crop_height) const {
  Frame part(crop_width, crop_height, order);
  const auto copy = [&](const std::vector<uint8_t>& from, std::vector<uint8_t>& to, int top,
                        int rows) {
    for (int row = 0; row < rows; ++row) {
      std::copy_n(from.begin() + static_cast<ptrdiff_t>(area(width, top + row)) + x, crop_width,
                  to.begin() + static_cast<ptrdiff_t>(area(crop_width, row)));
    }
  };
  copy(luma, part.luma, y, crop_height);
  copy(chroma, part.chroma, y / 2, crop_height / 2);
  return part;
}

Picture::Picture(int picture_width, int picture_height)
    : width(picture_width), height(picture_height), rgb(3 * area(width, height)) {}

Frame to_frame(const Picture& picture) {
  return frame_from_rows(picture.width, picture.height, [&](int y, float* rgb) {
    const uint8_t* const from = &picture.rgb[3 * area(picture.width, y)];
    std::copy(from, from + 3 * picture.width, rgb);
  });
}

Picture to_picture(const Frame& frame) {
  Picture picture(frame.width, frame.height);
  const int u_at = frame.order == ChromaOrder::kUv ? 0 : 1;
  for_each_row(frame.height, [&](int y) {
    const uint8_t* const luma = &frame.luma[area(frame.width, y)];
    const uint8_t* const chroma = &frame.chroma[area(frame.width, y / 2)];
    uint8_t* rgb = &picture.rgb[3 * area(frame.width, y)];
    for (int x = 0; x < frame.width; ++x, rgb += 3) {
      const float u = chroma[(x & ~1) + u_at] - 128.0F;
      const float v = chroma[(x & ~1) + 1 - u_at] - 128.0F;
      rgb[0] = to_byte(luma[x] + 1.402F * v);
      rgb[1] = to_byte(luma[x] - 0.344136F * u - 0.714136F * v);
      rgb[2] = to_byte(luma[x] + 1.772F * u);
    }
  });
  return picture;
}

}  // namespace zavri::tools
