#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace zavri::tools {

// Order of the two bytes of a chroma pair. Only the chroma denoise with its fixed tolerance treats
// the two differently.
enum class ChromaOrder { kUv, kVu };

// Longest side of a frame: all byte counts of one then fit 32 bits.
constexpr int kLargestSide = 32766;

// An 8-bit YUV 4:2:0 semi-planar picture without padding; width and height are even.
struct Frame {
  int width = 0;
  int height = 0;
  ChromaOrder order = ChromaOrder::kUv;
  std::vector<uint8_t> luma;    // width * height
  std::vector<uint8_t> chroma;  // width * height / 2

  Frame() = default;
  Frame(int frame_width, int frame_height, ChromaOrder chroma_order = ChromaOrder::kUv);

  double megapixels() const { return 1e-6 * width * height; }
  std::string size() const { return std::to_string(width) + 'x' + std::to_string(height); }

  // The same picture with U first.
  Frame with_u_first() const;

  // The part at (x, y), all four numbers even.
  Frame crop(int x, int y, int crop_width, int crop_height) const;
};

// 8-bit RGB, interleaved.
struct Picture {
  int width = 0;
  int height = 0;
  std::vector<uint8_t> rgb;

  Picture() = default;
  Picture(int picture_width, int picture_height);
};

// BT.601, full range. An odd last row or column of the picture is left out.
Frame to_frame(const Picture& picture);
Picture to_picture(const Frame& frame);

}  // namespace zavri::tools
