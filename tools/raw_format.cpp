#include "tools/raw_format.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "tools/error.h"

namespace zavri::tools {
namespace {

// "4000x2250" at `at`, or nothing.
std::string size_at(const std::string& text, size_t at) {
  constexpr char kDigits[] = "0123456789";
  const size_t x = text.find_first_not_of(kDigits, at);
  if (x == at || x == std::string::npos || text[x] != 'x') return {};
  const size_t end = std::min(text.find_first_not_of(kDigits, x + 1), text.size());
  return end == x + 1 ? std::string() : text.substr(at, end - at);
}

std::string size_in_name(const std::string& path) {
  const std::string name = std::filesystem::path(path).filename();
  std::string first = size_at(name, 0);
  if (!first.empty() && name[first.size()] == '_') return first;
  for (size_t at = name.find('_'); at != std::string::npos; at = name.find('_', at + 1)) {
    std::string size = size_at(name, at + 1);
    if (!size.empty()) return size;
  }
  return {};
}

std::string order_in_name(const std::string& path) {
  const std::string extension = std::filesystem::path(path).extension();
  return extension == ".nv21" ? "nv21" : "nv12";
}

// A size of this many bytes without padding: one that cameras have, or of the width asked for.
std::string what_would_fit(const RawFormat& asked, size_t bytes) {
  constexpr int kSizes[][2] = {{640, 480},   {1280, 720},  {1920, 1080}, {2592, 1944}, {3264, 2448},
                               {3840, 2160}, {4000, 2250}, {4000, 3000}, {4032, 3024}, {4160, 3120},
                               {4208, 3120}, {4608, 3456}, {5312, 2988}, {5344, 4016}};
  for (const auto& [width, height] : kSizes) {
    if (static_cast<size_t>(width) * height * 3 / 2 == bytes) {
      return std::to_string(width) + 'x' + std::to_string(height);
    }
  }
  const size_t width = static_cast<size_t>(asked.width);
  const size_t height = bytes / 3 * 2 / width;
  if (width * height * 3 / 2 == bytes && height % 2 == 0 && height > 0 && height <= 4 * width) {
    return std::to_string(width) + 'x' + std::to_string(height);
  }
  return {};
}

}  // namespace

std::pair<int, int> parse_size(const std::string& text, const std::string& argument) {
  int width = 0;
  int height = 0;
  int used = 0;
  const bool read = sscanf(text.c_str(), "%5dx%5d%n", &width, &height, &used) == 2;
  if (read && static_cast<size_t>(used) == text.size()) {
    const bool even = width % 2 == 0 && height % 2 == 0;
    if (even && width > 0 && height > 0 && width <= kLargestSide && height <= kLargestSide) {
      return {width, height};
    }
  }
  throw Error(argument + " " + text + ": a size is WxH, both even and at most " +
              std::to_string(kLargestSide) + ", such as 4000x3000");
}

ChromaOrder parse_order(const std::string& pixel) {
  if (pixel == "nv12") return ChromaOrder::kUv;
  if (pixel == "nv21") return ChromaOrder::kVu;
  throw Error("--pix " + pixel + ": the formats are nv12 and nv21");
}

const char* name_of(ChromaOrder order) { return order == ChromaOrder::kUv ? "nv12" : "nv21"; }

RawFormat raw_format(const std::string& path, const RawOptions& options, size_t bytes) {
  const std::string named = size_in_name(path);
  if (options.size.empty() && named.empty()) {
    throw Error(path + ": give --size WxH, the name does not carry one such as _4000x3000");
  }
  const auto [width, height] =
      options.size.empty() ? parse_size(named, path + ':') : parse_size(options.size, "--size");
  RawFormat format{};
  format.width = width;
  format.height = height;
  format.order = parse_order(options.pixel.empty() ? order_in_name(path) : options.pixel);
  format.stride = options.stride == 0 ? width : options.stride;
  format.scanlines = options.scanlines == 0 ? height : options.scanlines;
  if (format.stride < width) {
    throw Error("--stride " + std::to_string(format.stride) + ": at least the width, " +
                std::to_string(width));
  }
  if (format.scanlines < height || format.scanlines % 2 != 0) {
    throw Error("--scanlines " + std::to_string(format.scanlines) +
                ": even and at least the height, " + std::to_string(height));
  }
  if (format.bytes() != bytes) {
    const std::string fit = what_would_fit(format, bytes);
    std::string text = path + ": " + std::to_string(width) + 'x' + std::to_string(height) + ' ' +
                       name_of(format.order) + " is " + std::to_string(format.bytes()) +
                       " bytes, but ";
    text += fit.empty() ? "the file has " + std::to_string(bytes) + "; give --size or --stride"
                        : std::to_string(bytes) + " bytes is " + fit + ' ' + name_of(format.order);
    throw Error(text);
  }
  return format;
}

}  // namespace zavri::tools
