#include "tools/images/raw_format.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <tuple>

extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/pixdesc.h>
#include <libswscale/swscale.h>
}

#include "tools/error.h"

namespace zavri::tools {
namespace {

struct RawExtension {
  const char* name;
  const char* pixel;  // what a frame in such a file has unless the options say otherwise
};
constexpr RawExtension kRawExtensions[] = {{".nv12", "nv12"}, {".nv21", "nv21"}, {".yuv", "nv12"},
                                           {".raw", "nv12"},  {".i420", "i420"}, {".yv12", "yv12"}};

const RawExtension* find_extension(const std::string& path) {
  const std::string extension = extension_of(path);
  const auto* const found =
      std::find_if(std::begin(kRawExtensions), std::end(kRawExtensions),
                   [&](const RawExtension& known) { return extension == known.name; });
  return found == std::end(kRawExtensions) ? nullptr : found;
}

// Returns the size that begins at `at`, such as "4000x2250", or nothing.
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

std::string pixel_in_name(const std::string& path) {
  const RawExtension* const extension = find_extension(path);
  return extension == nullptr ? "nv12" : extension->pixel;
}

// Returns FFmpeg's name of the pixel format; yv12, which it does not have, stays.
std::string parse_pixel(const std::string& text) {
  if (text == "i420") return "yuv420p";
  if (text == "yv12") return text;
  const AVPixelFormat format = av_get_pix_fmt(text.c_str());
  const AVPixFmtDescriptor* const pixel = av_pix_fmt_desc_get(format);
  constexpr uint64_t kNoSamples =
      AV_PIX_FMT_FLAG_HWACCEL | AV_PIX_FMT_FLAG_PAL | AV_PIX_FMT_FLAG_BITSTREAM;
  if (pixel != nullptr && (pixel->flags & kNoSamples) == 0 && sws_isSupportedInput(format) > 0) {
    return text;
  }
  throw Error("--pix " + text +
              ": the formats are nv12, nv21, i420, yv12 and FFmpeg's, such as yuv422p or p010le");
}

size_t tight_bytes(const RawFormat& format) {
  const AVPixelFormat pixel =
      format.pixel == "yv12" ? AV_PIX_FMT_YUV420P : av_get_pix_fmt(format.pixel.c_str());
  return static_cast<size_t>(
      std::max(0, av_image_get_buffer_size(pixel, format.width, format.height, 1)));
}

size_t padded_bytes(int stride, int scanlines) {
  return static_cast<size_t>(stride) * static_cast<size_t>(scanlines) * 3 / 2;
}

// Checks the padding and sums the bytes up.
void settle_layout(RawFormat& format, const RawOptions& options) {
  format.stride = options.stride == 0 ? format.width : options.stride;
  format.scanlines = options.scanlines == 0 ? format.height : options.scanlines;
  if (!format.is_semi_planar()) {
    if (options.stride != 0 || options.scanlines != 0) {
      throw Error(std::string(options.stride != 0 ? "--stride" : "--scanlines") + ": frames of " +
                  format.pixel + " have no padding; nv12 and nv21 may have");
    }
    format.bytes = tight_bytes(format);
    return;
  }
  if (format.stride < format.width) {
    throw Error("--stride " + std::to_string(format.stride) + ": at least the width, " +
                std::to_string(format.width));
  }
  if (format.scanlines < format.height || format.scanlines % 2 != 0) {
    throw Error("--scanlines " + std::to_string(format.scanlines) +
                ": even and at least the height, " + std::to_string(format.height));
  }
  format.bytes = padded_bytes(format.stride, format.scanlines);
}

bool is_padded(const RawFormat& format) {
  return format.stride != format.width || format.scanlines != format.height;
}

std::string describe(const RawFormat& format) {
  std::string text =
      std::to_string(format.width) + 'x' + std::to_string(format.height) + ' ' + format.pixel;
  const char* joint = " with ";
  if (format.stride != format.width) {
    text += joint + ("--stride " + std::to_string(format.stride));
    joint = " and ";
  }
  if (format.scanlines != format.height) {
    text += joint + ("--scanlines " + std::to_string(format.scanlines));
  }
  return text;
}

// Returns the asked format with the padding that makes it so many bytes, where that is less than as
// much again in either direction.
std::optional<RawFormat> with_fitting_padding(const RawFormat& asked, int area) {
  const int paddings[][2] = {{asked.width, asked.height},
                             {area / asked.scanlines, asked.scanlines},
                             {asked.stride, area / asked.stride},
                             {area / asked.height, asked.height}};
  for (const auto& [stride, scanlines] : paddings) {
    const bool in_range = stride >= asked.width && stride < 2 * asked.width &&
                          scanlines >= asked.height && scanlines < 2 * asked.height;
    if (!in_range || scanlines % 2 != 0 || stride * scanlines != area) continue;
    RawFormat fit = asked;
    fit.stride = stride;
    fit.scanlines = scanlines;
    return fit;
  }
  return std::nullopt;
}

// Returns a format of this many pixels without padding, whose size is one that cameras have or has
// the width asked for.
std::optional<RawFormat> with_fitting_size(const RawFormat& asked, int area) {
  constexpr int kSizes[][2] = {{640, 480},   {1280, 720},  {1920, 1080}, {2592, 1944}, {3264, 2448},
                               {3840, 2160}, {4000, 2250}, {4000, 3000}, {4032, 3024}, {4160, 3120},
                               {4208, 3120}, {4608, 3456}, {5312, 2988}, {5344, 4016}};
  RawFormat fit = asked;
  const auto* const found =
      std::find_if(std::begin(kSizes), std::end(kSizes),
                   [&](const int(&size)[2]) { return size[0] * size[1] == area; });
  if (found != std::end(kSizes)) {
    fit.width = (*found)[0];
    fit.height = (*found)[1];
  } else {
    fit.height = area / asked.width;
    const bool in_range = fit.height > 0 && fit.height <= 4 * fit.width;
    if (!in_range || fit.height % 2 != 0 || fit.width * fit.height != area) return std::nullopt;
  }
  fit.stride = fit.width;
  fit.scanlines = fit.height;
  return fit;
}

std::optional<RawFormat> what_would_fit(const RawFormat& asked, size_t bytes) {
  const size_t area = bytes / 3 * 2;
  if (!asked.is_semi_planar() || area / 2 * 3 != bytes || area > INT_MAX) return std::nullopt;
  const std::optional<RawFormat> fit = with_fitting_padding(asked, static_cast<int>(area));
  return fit ? fit : with_fitting_size(asked, static_cast<int>(area));
}

Error wrong_bytes(const std::string& path, const RawFormat& format, size_t bytes) {
  const std::string is =
      path + ": " + describe(format) + " is " + std::to_string(format.bytes) + " bytes, but ";
  const std::optional<RawFormat> fit = what_would_fit(format, bytes);
  if (!fit) {
    return Error(is + "the file has " + std::to_string(bytes) + "; give --size, --pix or --stride");
  }
  const bool drops_padding = is_padded(format) && !is_padded(*fit);
  return Error(is + std::to_string(bytes) + " bytes is " + describe(*fit) +
               (drops_padding ? " without padding" : ""));
}

}  // namespace

std::string RawOptions::first_given() const {
  if (!size.empty()) return "--size";
  if (!pixel.empty()) return "--pix";
  if (stride != 0) return "--stride";
  return scanlines != 0 ? "--scanlines" : "";
}

Layout RawFormat::layout() const {
  const auto pitch = static_cast<size_t>(stride);
  return {pitch, pitch * static_cast<size_t>(scanlines), bytes, true};
}

std::string extension_of(const std::string& path) {
  std::string extension = std::filesystem::path(path).extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char c) { return static_cast<char>(tolower(c)); });
  return extension;
}

bool has_raw_extension(const std::string& path) { return find_extension(path) != nullptr; }

std::vector<std::string> raw_extensions() {
  std::vector<std::string> names;
  for (const RawExtension& extension : kRawExtensions) names.push_back(extension.name);
  return names;
}

bool has_raw_size(const std::string& path, const RawOptions& options) {
  return !options.size.empty() || !size_in_name(path).empty();
}

std::string name_without_size(const std::string& path) {
  std::string name = std::filesystem::path(path).stem();
  const size_t at = name.rfind('_');
  if (at == std::string::npos) return name;
  const std::string size = size_at(name, at + 1);
  return !size.empty() && at + 1 + size.size() == name.size() ? name.substr(0, at) : name;
}

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

RawFormat raw_format(const std::string& path, const RawOptions& options, size_t bytes) {
  const std::string named = size_in_name(path);
  if (options.size.empty() && named.empty()) {
    throw Error(path + ": give --size WxH, the name does not carry one such as _4000x3000");
  }
  RawFormat format;
  std::tie(format.width, format.height) =
      options.size.empty() ? parse_size(named, path + ':') : parse_size(options.size, "--size");
  format.pixel = parse_pixel(options.pixel.empty() ? pixel_in_name(path) : options.pixel);
  settle_layout(format, options);
  if (format.bytes != bytes) throw wrong_bytes(path, format, bytes);
  return format;
}

}  // namespace zavri::tools
