#pragma once

#include <string>

#include "tools/frame.h"

namespace zavri::tools {

// How the bytes of a raw frame lie: `scanlines` luma rows of `stride` bytes, then half as many
// chroma rows of the same stride.
struct RawFormat {
  int width;
  int height;
  ChromaOrder order;
  int stride;
  int scanlines;

  uint64_t bytes() const { return static_cast<uint64_t>(stride) * scanlines * 3 / 2; }
};

// What the command line says of raw input; what is left open comes from the file's name.
struct RawOptions {
  std::string size;   // WxH
  std::string pixel;  // nv12 or nv21
  int stride = 0;
  int scanlines = 0;
};

// The format of a raw file of `bytes` bytes. Names carry a size as `_4000x2250` or `4000x2250_`
// and the order as .nv12, .nv21 or .yuv, the last taken as NV12. Throws an Error that says what is
// missing or what would fit.
RawFormat raw_format(const std::string& path, const RawOptions& options, size_t bytes);

// "4000x2250" as two even positive numbers; `argument` is named in the error.
std::pair<int, int> parse_size(const std::string& text, const std::string& argument);

// "nv12" and "nv21".
ChromaOrder parse_order(const std::string& pixel);
const char* name_of(ChromaOrder order);

}  // namespace zavri::tools
