#include "tools/dump.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zavricustpro.h>

#include <cstdarg>
#include <cstring>
#include <filesystem>

#include "tools/error.h"
#include "tools/frame_io.h"

namespace zavri::tools {
namespace {

// What the library finds in the camera folder under any name, unless null.
const char* g_shown_dump = nullptr;

bool is_shown(const char* path) {
  constexpr char kFolder[] = "/data/misc/camera/";
  return g_shown_dump != nullptr && strncmp(path, kFolder, sizeof kFolder - 1) == 0;
}

// Plane after plane, the rows without padding: as the file is, so is the buffer.
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

}  // namespace

Frame load_dump(const std::string& path, const RawOptions& raw, const std::vector<uint32_t>& meta) {
  std::error_code error;
  const auto size = static_cast<size_t>(std::filesystem::file_size(path, error));
  if (error) throw Error(path + ": cannot be read: " + error.message());
  if (meta.size() > 2) throw Error("--meta: two numbers at most, of luma and of chroma");
  // One read of the system moves no more.
  if (size > INT32_MAX - 4096) throw Error(path + ": larger than 2 gigabytes");
  const uint32_t luma_meta = meta.empty() ? 0 : meta[0];
  const uint32_t chroma_meta = meta.size() < 2 ? 0 : meta[1];
  const size_t both = size_t{luma_meta} + chroma_meta;
  const bool fixed = std::filesystem::path(path).filename() == "0.yuv";
  if (both > size || (fixed && both > 0)) {
    throw Error("--meta: " + path + (fixed ? " is a fixed dump, which has none" : " is smaller"));
  }
  const RawFormat format = raw_format(path, raw, size - both);
  if (access(path.c_str(), R_OK) != 0) throw Error(path + ": cannot be read: " + strerror(errno));

  Bytes bytes(size);
  const size_t chroma = luma_meta + size_t{static_cast<uint32_t>(format.stride)} * format.scanlines;
  int32_t code = 0;
  g_shown_dump = path.c_str();
  if (fixed) {
    code = zavri_debug_load_fixed_yuv(bytes.data(), static_cast<uint32_t>(chroma), &bytes[chroma],
                                      static_cast<uint32_t>(size - chroma));
  } else {
    loadYuv(bytes.data(), describe(format, luma_meta, chroma_meta));
  }
  g_shown_dump = nullptr;
  if (code != 0) {
    throw Error(path + ": the library refused it with code " + std::to_string(code), kRefused);
  }
  const auto at = [&](size_t index) { return bytes.begin() + static_cast<ptrdiff_t>(index); };
  bytes.erase(at(chroma), at(chroma + chroma_meta));
  bytes.erase(at(0), at(luma_meta));
  return decode_raw(bytes, format);
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
