#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace zavri::tools {

// The two bytes of a chroma pair stand in one of these orders. Only the chroma denoise with its
// fixed tolerance treats them differently.
enum class ChromaOrder { kUv, kVu };

// Frames have at most this many pixels a side, so that every byte count of a frame fits 32 bits.
constexpr int kLargestSide = 32766;

// Where the planes of a frame lie in its buffer. A phone pads rows and planes:
//
//   luma at byte 0     height rows of width bytes, each `stride` bytes after the one before
//   chroma at byte     `chroma_at`: height / 2 rows of width bytes, `stride` bytes apart
struct Layout {
  size_t stride = 0;
  size_t chroma_at = 0;
  size_t bytes = 0;  // of the whole buffer, padding behind the chroma included
  // A fixed layout is a raw file's own, in which every operation must work. In others the planes
  // may be moved apart, so that no operation runs from one into the other.
  bool fixed = false;
};

// A frame is an 8-bit YUV 4:2:0 semi-planar picture, BT.601 full range, in one buffer whose layout
// it keeps; width and height are even.
class Frame {
 public:
  Frame() = default;
  // Makes a frame without row padding, whose chroma plane directly follows the luma plane.
  Frame(int width, int height, ChromaOrder order = ChromaOrder::kUv);
  Frame(int width, int height, ChromaOrder order, const Layout& layout);
  // Takes the bytes over, which are layout.bytes many.
  Frame(int width, int height, ChromaOrder order, const Layout& layout,
        std::vector<uint8_t> buffer);

  int width() const { return width_; }
  int height() const { return height_; }
  ChromaOrder order() const { return order_; }
  const Layout& layout() const { return layout_; }

  // Returns the buffer as a file or a HAL has it, layout().bytes bytes.
  std::vector<uint8_t>& buffer() { return buffer_; }
  const std::vector<uint8_t>& buffer() const { return buffer_; }

  // These return row y of luma, 0..height-1, and of chroma, 0..height/2-1.
  uint8_t* luma_row(int y) { return &buffer_[layout_.stride * static_cast<size_t>(y)]; }
  const uint8_t* luma_row(int y) const { return &buffer_[layout_.stride * static_cast<size_t>(y)]; }
  uint8_t* chroma_row(int y) {
    return &buffer_[layout_.chroma_at + layout_.stride * static_cast<size_t>(y)];
  }
  const uint8_t* chroma_row(int y) const {
    return &buffer_[layout_.chroma_at + layout_.stride * static_cast<size_t>(y)];
  }

  double megapixels() const { return 1e-6 * width_ * height_; }
  std::string size() const { return std::to_string(width_) + 'x' + std::to_string(height_); }

  // Returns the part at (x, y) without padding; all four numbers are even.
  Frame crop(int x, int y, int crop_width, int crop_height) const;

  // Returns the same picture in the same layout, with its chroma pairs in this order.
  Frame with_order(ChromaOrder order) const;

 private:
  int width_ = 0;
  int height_ = 0;
  ChromaOrder order_ = ChromaOrder::kUv;
  Layout layout_;
  std::vector<uint8_t> buffer_;
};

// A picture is 8-bit RGB, interleaved.
struct Picture {
  int width = 0;
  int height = 0;
  std::vector<uint8_t> rgb;

  Picture() = default;
  Picture(int picture_width, int picture_height);
};

// Converts a picture; an odd last row or column is left out.
Frame to_frame(const Picture& picture);
Picture to_picture(const Frame& frame);

// The picture no wider than that; each pixel is the mean of those it covers.
Picture shrunk(const Picture& picture, int most_width);

}  // namespace zavri::tools
