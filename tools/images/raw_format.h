#pragma once

#include <string>
#include <utility>
#include <vector>

#include "tools/images/frame.h"

namespace zavri::tools {

// Holds what the command line says of raw input; what it leaves open comes from the file's name.
struct RawOptions {
  std::string size;   // WxH
  std::string pixel;  // an FFmpeg pixel format such as nv12, nv21 or yuv420p, or i420 or yv12
  int stride = 0;
  int scanlines = 0;

  // Returns the first option that was given, such as "--size", or nothing.
  std::string first_given() const;
};

// Says how the bytes of a raw frame lie. In nv12 and nv21 `scanlines` luma rows of `stride` bytes
// are followed by half as many chroma rows of the same stride. Rows of all other formats have no
// padding.
struct RawFormat {
  int width = 0;
  int height = 0;
  std::string pixel;  // FFmpeg's name
  int stride = 0;
  int scanlines = 0;
  size_t bytes = 0;

  bool is_semi_planar() const { return pixel == "nv12" || pixel == "nv21"; }
  // Semi-planar formats alone have an order and a layout.
  ChromaOrder order() const { return pixel == "nv21" ? ChromaOrder::kVu : ChromaOrder::kUv; }
  Layout layout() const;
};

// Returns the format of a raw file of `bytes` bytes. Names carry a size as `_4000x2250` or
// `4000x2250_` and the pixel format as their extension, such as .nv21 or .i420; NV12 stands for
// extensions that name none. Throws an Error that says what is missing or what would fit.
RawFormat raw_format(const std::string& path, const RawOptions& options, size_t bytes);

// Tells whether the name's extension is one of raw_extensions().
bool has_raw_extension(const std::string& path);

// Returns the extensions of raw frames, such as ".nv12", in lower case.
std::vector<std::string> raw_extensions();

// Tells whether the name or the options carry a size.
bool has_raw_size(const std::string& path, const RawOptions& options);

// Returns the file's name without its extension and the size in front of that, which is frame0 for
// a/frame0_4000x3000.nv12.
std::string name_without_size(const std::string& path);

// Reads "4000x2250" as two even positive numbers. Throws an Error that names `argument`.
std::pair<int, int> parse_size(const std::string& text, const std::string& argument);

// Returns the extension in lower case, such as ".nv21".
std::string extension_of(const std::string& path);

}  // namespace zavri::tools
