// Fuzzes the debug dumps and loads. Files are kept in memory: what is dumped must come back.
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <string>

#include "debug/raw_file.h"
#include "fuzz/fuzzing.h"
#include "include/zavricustpro.h"

using namespace zavri::fuzzing;

namespace {

int g_file = -1;
bool g_exists;

// Gathers the bytes of a frame that its dump holds, and tells how large the frame's buffer is.
struct Walk {
  Bytes dumped;
  size_t end = 1;

  void take(const Bytes& frame, size_t at, size_t bytes) {
    end = std::max(end, at + bytes);
    if (at + bytes > frame.size()) return;
    dumped.insert(dumped.end(), frame.begin() + static_cast<ptrdiff_t>(at),
                  frame.begin() + static_cast<ptrdiff_t>(at + bytes));
  }
};

Walk walk(const T_DumpFrameInfo& info, const Bytes& frame) {
  Walk result;
  for (uint32_t i = 0; i < std::min(info.num_planes, 8u); ++i) {
    const T_DumpPlaneInfo& plane = info.planes[i];
    size_t at = plane.offset + size_t{i == 0 ? 0 : info.planes[i - 1].len};
    result.take(frame, at, plane.meta_len);
    at += plane.meta_len;
    for (int32_t row = 0; row < plane.height; ++row, at += plane.stride) {
      result.take(frame, at, plane.width);
    }
  }
  return result;
}

Bytes content() {
  Bytes bytes(static_cast<size_t>(lseek(g_file, 0, SEEK_END)));
  if (pread(g_file, bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) abort();
  return bytes;
}

void check_frame_dump(Input& input) {
  T_DumpFrameInfo info{};
  info.num_planes = input.below(10);
  info.frame_idx = input.byte();
  info.named_by_size = input.flag();
  info.frame_count = input.byte();
  for (T_DumpPlaneInfo& plane : info.planes) {
    const uint32_t width = input.below(20);
    plane = {input.byte(),
             input.byte(),
             width + input.below(9),
             width,
             static_cast<int32_t>(input.below(9)) - 1,
             input.flag() ? input.byte() : uint8_t{0}};
  }
  const Bytes frame = Picture(input).plane(walk(info, {}).end);
  const Bytes expected = walk(info, frame).dumped;
  dumpYuv(frame.data(), info);
  if (content() != expected) abort();
  if (info.named_by_size == 0) return;
  g_exists = true;
  Bytes loaded(frame.size());
  loadYuv(loaded.data(), info);
  if (walk(info, loaded).dumped != expected) abort();
}

void check_buffer_dumps(Input& input) {
  const std::string name(input.byte(), 'n');
  Picture picture(input);
  const Bytes y = picture.plane(1 + input.byte());
  const Bytes u = picture.plane(1 + input.byte());
  const Bytes v = picture.plane(u.size());
  const auto y_len = static_cast<uint32_t>(y.size());
  const auto u_len = static_cast<uint32_t>(u.size());
  const auto pairs = static_cast<int32_t>(u_len);
  zavri_debug_dump_yuv_simple1(y.data(), y_len, u.data(), u_len, name.c_str());
  zavri_debug_dump_yuv_simple2(y.data(), y_len, u.data(), pairs, v.data(), pairs, name.c_str());
  zavri_debug_dump_fixed_yuv(y.data(), y_len, u.data(), u_len);
  g_exists = true;
  Bytes first(y.size());
  Bytes second(u.size());
  if (zavri_debug_load_fixed_yuv(first.data(), y_len, second.data(), u_len) != 0) abort();
  if (first != y || second != u) abort();
}

}  // namespace

// These are called instead of zavri::file_exists and zavri::open_raw.
extern "C" {
decltype(zavri::file_exists) __wrap__ZN5zavri11file_existsEPKc;
decltype(zavri::open_raw) __wrap__ZN5zavri8open_rawEPKci;
bool __wrap__ZN5zavri11file_existsEPKc(const char*) { return g_exists; }
int __wrap__ZN5zavri8open_rawEPKci(const char*, int) {
  lseek(g_file, 0, SEEK_SET);
  return dup(g_file);
}
}

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  g_file = memfd_create("dump", 0);
  g_exists = false;
  input.flag() ? check_frame_dump(input) : check_buffer_dumps(input);
  close(g_file);
  return 0;
}
