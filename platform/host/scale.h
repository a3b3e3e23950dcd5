#pragma once

#include <cstddef>
#include <cstdint>

namespace zavri::host {

template <class Byte>
struct Plane {
  Byte* data;
  uint32_t width;
  uint32_t height;
  uint32_t stride;  // bytes

  Byte* row(uint32_t y) const { return data + size_t{y} * stride; }
};
using Source = Plane<const uint8_t>;
using Target = Plane<uint8_t>;

enum class Interpolation { kNearest, kLinear, kSpline };

// Scales a plane of at least one pixel to one of any size; a plane of equal size is copied. Needs
// memory for a few rows, without which it returns false and has written nothing.
bool scale(const Source& source, const Target& target, Interpolation interpolation);

}  // namespace zavri::host
