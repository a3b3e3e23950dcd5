#include "tools/images/mask.h"

#include <algorithm>

namespace zavri::tools {

Mask::Mask(int width, int height)
    : width_(width),
      height_(height),
      set_(static_cast<size_t>(width) * static_cast<size_t>(height)) {}

Mask::Mask(const Picture& picture) : Mask(picture.width, picture.height) {
  constexpr uint8_t kMiddle = 128;
  for (size_t i = 0; i < set_.size(); ++i) set_[i] = picture.rgb[3 * i] >= kMiddle;
}

bool Mask::touches(int x, int y, int width, int height) const {
  const int right = std::min(x + width, width_);
  const int bottom = std::min(y + height, height_);
  for (int at = std::max(y, 0); at < bottom; ++at) {
    const uint8_t* const end = row(at) + right;
    if (x < right && std::find(row(at) + std::max(x, 0), end, 1) != end) return true;
  }
  return false;
}

Mask Mask::crop(int x, int y, int width, int height) const {
  Mask part(width, height);
  for (int at = 0; at < height; ++at) std::copy_n(row(y + at) + x, width, part.row(at));
  return part;
}

Picture Mask::picture() const {
  Picture picture(width_, height_);
  for (size_t i = 0; i < set_.size(); ++i) {
    std::fill_n(&picture.rgb[3 * i], 3, static_cast<uint8_t>(set_[i] == 0 ? 0 : 255));
  }
  return picture;
}

}  // namespace zavri::tools
