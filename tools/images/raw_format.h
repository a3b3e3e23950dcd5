#pragma once

#include <string>
#include <utility>

#include "tools/images/frame.h"

namespace zavri::tools {

// What the command line says of raw input; what it leaves open comes from the file's name.
struct RawOptions {
  std::string size;   // WxH
  std::string pixel;  // an FFmpeg pixel format such as nv12, nv21 or yuv420p, or i420 or yv12
  int stride = 0;
  int scanlines = 0;

  // The first option that was given, such as "--size"; empty if none was.
  std::string first_given() const;
};

// How the bytes of a raw frame lie. Of nv12 and nv21: `scanlines` luma rows of `stride` bytes, then
// half as many chroma rows of the same stride. The rows of all other formats have no padding.
struct RawFormat {
  int width = 0;
  int height = 0;
  std::string pixel;  // FFmpeg's name
  int stride = 0;
  int scanlines = 0;
  size_t bytes = 0;

  bool is_semi_planar() const { return pixel == "nv12" || pixel == "nv21"; }
  // Both of semi-planar formats alone.
  ChromaOrder order() const { return pixel == "nv21" ? ChromaOrder::kVu : ChromaOrder::kUv; }
  Layout layout() const;
};

// The format of a raw file of `bytes` bytes. Names carry a size as `_4000x2250` or `4000x2250_` and
// the pixel format as their extension, .nv12, .nv21, .i420 or .yv12; any other is taken as NV12.
// Throws an Error that says what is missing or what would fit.
RawFormat raw_format(const std::string& path, const RawOptions& options, size_t bytes);

// Whether the name's extension is that of raw frames.
bool has_raw_extension(const std::string& path);

// Whether the name or the options carry a size.
bool has_raw_size(const std::string& path, const RawOptions& options);

// The file's name without its extension and a size behind it: frame0 of a/frame0_4000x3000.nv12.
std::string name_without_size(const std::string& path);

// "4000x2250" as two even positive numbers; `argument` is named in the error.
std::pair<int, int> parse_size(const std::string& text, const std::string& argument);

// "nv12" and "nv21".
ChromaOrder parse_order(const std::string& pixel);
const char* name_of(ChromaOrder order);

// The extension in lower case, such as ".nv21".
std::string extension_of(const std::string& path);

}  // namespace zavri::tools
