#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "debug/raw_file.h"
#include "include/zavricustpro.h"
#include "platform/log.h"

namespace zavri {
namespace {

constexpr char kNamedFolder[] = "/data/misc/camera/zvcdumpyuv";
constexpr char kFixedFolder[] = "/data/misc/camera/zvcfixedyuv";

constexpr int32_t kDone = 0;
constexpr int32_t kMissing = 1;
constexpr int32_t kBadParameters = 2;
constexpr int32_t kNoMemory = 3;

// Holds <folder>/<name>, cut to what fits.
struct ShortPath {
  char text[64] = {};
  ShortPath(const char* folder, const char* name) {
    snprintf(text, sizeof text, "%s/%s", folder, name);
  }
};

ShortPath fixed_path() { return {kFixedFolder, "0.yuv"}; }

// Calls `transfer` with the opened file. Descriptor 0 counts as a failure, as -1 does.
template <class Transfer>
void with_file(const ShortPath& path, int flags, Transfer transfer) {
  const int file = open_raw(path.text, flags);
  if (file < 1) return;
  transfer(file);
  close(file);
}

void dump(const ShortPath& path, const void* first, uint32_t first_len, const void* second,
          uint32_t second_len) {
  with_file(path, kCreate, [&](int file) {
    write_raw(file, first, first_len);
    write_raw(file, second, second_len);
  });
}

bool usable(const uint8_t* buf1, uint32_t len1, const uint8_t* buf2, uint32_t len2) {
  return len1 != 0 && len2 != 0 && buf1 != nullptr && buf2 != nullptr;
}

}  // namespace
}  // namespace zavri

int32_t zavri_debug_dump_yuv_simple1(const uint8_t* buf1, uint32_t len1, const uint8_t* buf2,
                                     uint32_t len2, const char* name) {
  if (buf1 == nullptr || buf2 == nullptr || name == nullptr) return zavri::kBadParameters;
  zavri::dump({zavri::kNamedFolder, name}, buf1, len1, buf2, len2);
  return zavri::kDone;
}

int32_t zavri_debug_dump_yuv_simple2(const uint8_t* y, uint32_t y_len, const uint8_t* u,
                                     int32_t u_len, const uint8_t* v, int32_t v_len,
                                     const char* name) {
  if (u_len != v_len || u == nullptr || y == nullptr || v == nullptr || name == nullptr) {
    return zavri::kBadParameters;
  }
  // The length of both chroma planes together must fit a signed number as well.
  if (u_len < 0 || u_len > INT32_MAX / 2) return zavri::kNoMemory;
  const auto pairs = static_cast<uint32_t>(u_len);
  auto* const uv = static_cast<uint8_t*>(malloc(2 * pairs));
  if (uv == nullptr) return zavri::kNoMemory;
  for (uint32_t i = 0; i < pairs; ++i) {
    uv[2 * i] = u[i];
    uv[2 * i + 1] = v[i];
  }
  zavri::dump({zavri::kNamedFolder, name}, y, y_len, uv, 2 * pairs);
  free(uv);
  return zavri::kDone;
}

int32_t zavri_debug_dump_fixed_yuv(const uint8_t* buf1, uint32_t len1, const uint8_t* buf2,
                                   uint32_t len2) {
  if (!zavri::usable(buf1, len1, buf2, len2)) return zavri::kBadParameters;
  const zavri::ShortPath path = zavri::fixed_path();
  __android_log_print(zavri::kLogError, zavri::kTagProcessing,
                      "zavri_debug_dump_fixed_yuv, name: %s", path.text);
  if (zavri::file_exists(path.text)) {
    __android_log_print(zavri::kLogError, zavri::kTagProcessing,
                        "zavri_debug_dump_fixed_yuv, file exist");
    return zavri::kDone;
  }
  zavri::dump(path, buf1, len1, buf2, len2);
  return zavri::kDone;
}

int32_t zavri_debug_load_fixed_yuv(uint8_t* buf1, uint32_t len1, uint8_t* buf2, uint32_t len2) {
  if (!zavri::usable(buf1, len1, buf2, len2)) return zavri::kBadParameters;
  const zavri::ShortPath path = zavri::fixed_path();
  if (!zavri::file_exists(path.text)) return zavri::kMissing;
  zavri::with_file(path, O_RDWR, [&](int file) {
    zavri::read_raw(file, buf1, len1);
    zavri::read_raw(file, buf2, len2);
  });
  return zavri::kDone;
}
