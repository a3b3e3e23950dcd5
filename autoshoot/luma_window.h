#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "include/zavricustpro.h"

namespace zavri {

// A measure walks this rectangle of a luma plane. The plane has no padding, so the width of the
// image is the distance from row to row.
//
//   |<------------- pitch ------------->|
//   |         first->|<-width->|        |   at least one column of the image stays free to the
//   |                |  height |        |   right, and one row below
struct LumaWindow {
  const uint8_t* first;
  size_t width;
  size_t height;
  size_t pitch;

  const uint8_t* row(size_t r) const { return first + r * pitch; }
};

// Returns nothing when the plane is null, or the rectangle has a negative field or leaves no
// margin. `rect` is not looked at without a plane.
inline std::optional<LumaWindow> open_window(const uint8_t* luma, const T_OptRect* rect,
                                             uint32_t image_width, uint32_t image_height) {
  if (luma == nullptr) return std::nullopt;
  const T_OptRect r = *rect;
  if (r.x < 0 || r.y < 0 || r.width < 0 || r.height < 0) return std::nullopt;
  const auto x = static_cast<uint32_t>(r.x);
  const auto y = static_cast<uint32_t>(r.y);
  const auto width = static_cast<uint32_t>(r.width);
  const auto height = static_cast<uint32_t>(r.height);
  // Each sum has two numbers of 31 bits and cannot wrap.
  if (x + width >= image_width || y + height >= image_height) return std::nullopt;
  const size_t pitch = image_width;
  return LumaWindow{luma + y * pitch + x, width, height, pitch};
}

}  // namespace zavri
