#include "tools/operations/dump.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zavricustpro.h>

#include <cstdarg>
#include <cstring>
#include <filesystem>

#include "tools/error.h"

namespace zavri::tools {
namespace {

// The library finds this file in the camera folder under any name, unless it is null.
const char* g_shown_dump = nullptr;

bool is_shown(const char* path) {
  constexpr char kFolder[] = "/data/misc/camera/";
  return g_shown_dump != nullptr && strncmp(path, kFolder, sizeof kFolder - 1) == 0;
}

// Describes plane after plane with rows as wide as their stride, so that the buffer becomes what
// the file is.
T_DumpFrameInfo describe(const RawFormat& format, uint32_t luma_meta, uint32_t chroma_meta) {
  const auto stride = static_cast<uint32_t>(format.stride);
  const auto luma_bytes = luma_meta + stride * static_cast<uint32_t>(format.scanlines);
  T_DumpFrameInfo info{};
  info.num_planes = 2;
  info.planes[0] = {luma_bytes, 0, stride, stride, format.scanlines, luma_meta};
  info.planes[1] = {0, 0, stride, stride, format.scanlines / 2, chroma_meta};
  info.named_by_size = 1;
  return info;
}

bool is_fixed_dump(const std::string& path) {
  return std::filesystem::path(path).filename() == "0.yuv";
}

// Returns how many bytes of the file are no meta bytes.
size_t without_meta(const std::string& path, const DumpMeta& meta, size_t size) {
  const size_t both = static_cast<size_t>(meta.luma) + static_cast<size_t>(meta.chroma);
  if (both > 0 && is_fixed_dump(path)) {
    throw Error("--meta: " + path + " is a fixed dump, which has none");
  }
  if (both > size) throw Error("--meta: " + path + " is smaller");
  return size - both;
}

// Reads the file by the library, which finds it in the camera folder.
void read_dump(const std::string& path, const RawFormat& format, const DumpMeta& meta,
               std::vector<uint8_t>& bytes) {
  const size_t chroma = static_cast<size_t>(meta.luma) + format.layout().chroma_at;
  int32_t code = 0;
  g_shown_dump = path.c_str();
  if (is_fixed_dump(path)) {
    code = zavri_debug_load_fixed_yuv(bytes.data(), static_cast<uint32_t>(chroma), &bytes[chroma],
                                      static_cast<uint32_t>(bytes.size() - chroma));
  } else {
    loadYuv(bytes.data(),
            describe(format, static_cast<uint32_t>(meta.luma), static_cast<uint32_t>(meta.chroma)));
  }
  g_shown_dump = nullptr;
  if (code != 0) {
    throw Error(path + ": the library refused it with code " + std::to_string(code), kRefused);
  }
}

}  // namespace

Setting DumpMeta::setting() {
  const auto assign = [this](const std::string& text) {
    const auto numbers = parse_list(text, 2, 0, INT32_MAX);
    if (!numbers) return false;
    luma = numbers->front();
    chroma = numbers->size() > 1 ? numbers->back() : 0;
    return true;
  };
  return {"meta", "LUMA[,CHROMA]", "bytes in front of luma and chroma, such as 64,0", assign,
          [this] {
            return luma + chroma == 0 ? "" : std::to_string(luma) + ',' + std::to_string(chroma);
          }};
}

Frame load_dump(const std::string& path, const RawOptions& raw, const DumpMeta& meta) {
  std::error_code error;
  const auto size = static_cast<size_t>(std::filesystem::file_size(path, error));
  if (error) throw Error(path + ": cannot be read: " + error.message());
  // One read of the system moves no more.
  if (size > INT32_MAX - 4096) throw Error(path + ": larger than 2 gigabytes");
  const RawFormat format = raw_format(path, raw, without_meta(path, meta, size));
  if (!format.is_semi_planar()) {
    throw Error("--pix " + format.pixel + ": dumps are nv12 or nv21");
  }
  if (access(path.c_str(), R_OK) != 0) throw Error(path + ": cannot be read: " + strerror(errno));

  std::vector<uint8_t> bytes(size);
  read_dump(path, format, meta, bytes);
  bytes.erase(bytes.begin(), bytes.begin() + meta.luma);
  Layout layout = format.layout();
  layout.chroma_at += static_cast<size_t>(meta.chroma);
  layout.bytes = bytes.size();
  return {format.width, format.height, format.order(), layout, std::move(bytes)};
}

}  // namespace zavri::tools

using zavri::tools::g_shown_dump;
using zavri::tools::is_shown;

// The library's calls of these two end here, as those of the whole program do.
extern "C" {
__attribute__((visibility("default"))) int open(const char* path, int flags, ...) {
  if (is_shown(path)) return openat(AT_FDCWD, g_shown_dump, O_RDONLY);
  mode_t mode = 0;
  if ((flags & (O_CREAT | O_TMPFILE)) != 0) {
    va_list arguments;
    va_start(arguments, flags);
    mode = va_arg(arguments, mode_t);
    va_end(arguments);
  }
  return openat(AT_FDCWD, path, flags, mode);
}

__attribute__((visibility("default"))) int stat(const char* path, struct stat* status) noexcept {
  if (is_shown(path)) path = g_shown_dump;
  return fstatat(AT_FDCWD, path, status, 0);
}
}
