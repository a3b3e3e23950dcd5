#include "tools/picture_codec.h"

#define STBI_ONLY_PNG
#define STBI_ONLY_JPEG
#define STBI_ONLY_PNM
#define STB_IMAGE_STATIC
#define STB_IMAGE_IMPLEMENTATION
#define STB_IMAGE_WRITE_STATIC
#define STB_IMAGE_WRITE_IMPLEMENTATION
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#pragma GCC diagnostic ignored "-Wundef"
#include <stb/stb_image.h>
#include <stb/stb_image_write.h>
#pragma GCC diagnostic pop

#include <algorithm>
#include <climits>
#include <optional>
#include <utility>

#include "tools/error.h"

namespace zavri::tools {
namespace {

constexpr int kChannels = 3;
constexpr int kJpegQuality = 95;

void append(void* context, void* data, int size) {
  auto& bytes = *static_cast<Bytes*>(context);
  const auto* const from = static_cast<const uint8_t*>(data);
  bytes.insert(bytes.end(), from, from + size);
}

int size_in_int(const Bytes& bytes) {
  return static_cast<int>(std::min<size_t>(bytes.size(), INT_MAX));
}

// Width and height that the header states.
std::optional<std::pair<int, int>> read_header(const Bytes& bytes) {
  int width = 0;
  int height = 0;
  int channels = 0;
  if (!stbi_info_from_memory(bytes.data(), size_in_int(bytes), &width, &height, &channels)) {
    return std::nullopt;
  }
  return std::pair{width, height};
}

}  // namespace

bool is_picture(const Bytes& bytes) { return read_header(bytes).has_value(); }

Picture decode_picture(const Bytes& bytes, const std::string& name) {
  const auto header = read_header(bytes);
  if (!header) throw Error(name + ": not a PNG, JPEG or PPM picture");
  auto [width, height] = *header;
  if (std::min(width, height) < 2 || std::max(width, height) > kLargestSide) {
    throw Error(name + ": a picture of " + std::to_string(width) + 'x' + std::to_string(height) +
                "; sides of 2 to " + std::to_string(kLargestSide) + " are read");
  }
  int channels = 0;
  stbi_uc* const pixels = stbi_load_from_memory(bytes.data(), size_in_int(bytes), &width, &height,
                                                &channels, kChannels);
  if (pixels == nullptr) throw Error(name + ": a damaged picture: " + stbi_failure_reason());
  Picture picture(width, height);
  std::copy_n(pixels, picture.rgb.size(), picture.rgb.begin());
  stbi_image_free(pixels);
  return picture;
}

Bytes encode_png(const Picture& picture) {
  Bytes bytes;
  // Noise hardly compresses: a deeper search costs seconds and saves a few percent.
  stbi_write_png_compression_level = 1;
  stbi_write_png_to_func(append, &bytes, picture.width, picture.height, kChannels,
                         picture.rgb.data(), picture.width * kChannels);
  return bytes;
}

Bytes encode_jpeg(const Picture& picture) {
  Bytes bytes;
  stbi_write_jpg_to_func(append, &bytes, picture.width, picture.height, kChannels,
                         picture.rgb.data(), kJpegQuality);
  return bytes;
}

Bytes encode_ppm(const Picture& picture) {
  const std::string header =
      "P6\n" + std::to_string(picture.width) + ' ' + std::to_string(picture.height) + "\n255\n";
  Bytes bytes(header.begin(), header.end());
  bytes.insert(bytes.end(), picture.rgb.begin(), picture.rgb.end());
  return bytes;
}

}  // namespace zavri::tools
