#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>

namespace zavri::device {

// A picture is one 8-bit plane of a probe, as aligned as any vendor asks for.
class Picture {
 public:
  Picture(uint32_t picture_width, uint32_t picture_height, uint32_t bytes_to_next_row)
      : width(picture_width), height(picture_height), stride(bytes_to_next_row) {
    constexpr size_t kAlign = 128;
    void* block = nullptr;
    if (posix_memalign(&block, kAlign, size_t{stride} * height + kAlign) != 0) abort();
    block_.reset(static_cast<uint8_t*>(block));
  }
  // Makes a picture whose rows start aligned.
  Picture(uint32_t picture_width, uint32_t picture_height)
      : Picture(picture_width, picture_height, (picture_width + 127) / 128 * 128) {}

  uint8_t* data() const { return block_.get(); }
  uint8_t& at(uint32_t x, uint32_t y) const { return data()[size_t{y} * stride + x]; }

  // Gives each sample value(x, y).
  template <class Value>
  void fill(Value value) const {
    for (uint32_t y = 0; y < height; ++y) {
      for (uint32_t x = 0; x < width; ++x) at(x, y) = static_cast<uint8_t>(value(x, y));
    }
  }

  const uint32_t width;
  const uint32_t height;
  const uint32_t stride;

 private:
  struct Free {
    void operator()(uint8_t* block) const { free(block); }
  };
  std::unique_ptr<uint8_t, Free> block_;
};

// Returns a byte that looks random and is the same at every call.
inline uint8_t noise(uint32_t x, uint32_t y) {
  uint32_t h = x * 73856093u ^ y * 19349663u;
  h = (h ^ h >> 13) * 0x5bd1e995u;
  return static_cast<uint8_t>(h >> 24);
}

enum class Axis { kAlong, kDown };
inline constexpr Axis kAxes[] = {Axis::kAlong, Axis::kDown};

}  // namespace zavri::device
