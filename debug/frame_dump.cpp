#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <iterator>

#include "debug/raw_file.h"
#include "include/zavricustpro.h"
#include "platform/log.h"

namespace zavri {
namespace {

// This time stands in the names of a burst's frames. It is 0 until a dump takes it, and no lock
// guards it.
int32_t g_dump_time;

bool begins_burst(const T_DumpFrameInfo& info) {
  return info.frame_idx == 0 || ((info.frame_count - 1) & 0xff) <= 1;
}

struct LongPath {
  char text[1024] = {};

  explicit LongPath(const T_DumpFrameInfo& info) {
    const auto width = static_cast<int>(info.planes[0].width);
    const int height = info.planes[0].height;
    const auto index = static_cast<int>(info.frame_idx);
    if (info.named_by_size) {
      snprintf(text, sizeof text, "/data/misc/camera/zvcfixedyuvprefix_%dx%d_%d_suffix.yuv", width,
               height, index);
    } else {
      snprintf(text, sizeof text, "/data/misc/camera/zvcfixedyuvprefix_%d_%dx%d_%d_suffix.yuv",
               g_dump_time, width, height, index);
    }
  }
};

// Calls transfer(position, bytes) for all stretches of a frame, in the order of the file.
template <class Transfer>
void for_each_stretch(const T_DumpFrameInfo& info, Transfer transfer) {
  const uint32_t planes = std::min<uint32_t>(info.num_planes, std::size(info.planes));
  for (uint32_t i = 0; i < planes; ++i) {
    const T_DumpPlaneInfo& plane = info.planes[i];
    // Only the plane before counts, not all of them: the offsets of the record make up for the
    // rest.
    uint32_t position = plane.offset + (i > 0 ? info.planes[i - 1].len : 0);
    if (plane.meta_len != 0) {
      transfer(position, plane.meta_len);
      position += plane.meta_len;
    }
    for (int32_t row = 0; row < plane.height; ++row, position += plane.stride) {
      transfer(position, plane.width);
    }
  }
}

}  // namespace
}  // namespace zavri

int32_t dumpYuv(const uint8_t* base, T_DumpFrameInfo info) {
  if (zavri::begins_burst(info)) zavri::g_dump_time = static_cast<int32_t>(time(nullptr));
  const zavri::LongPath path(info);
  if (zavri::file_exists(path.text)) {
    __android_log_print(zavri::kLogError, zavri::kTagProcessing,
                        "[ZavriDebug] night shot dump yuv, file exist");
    return 0;
  }
  // The result is not checked: after a failure the calls below fail one by one.
  const int file = zavri::open_raw(path.text, zavri::kCreate);
  zavri::for_each_stretch(info, [&](uint32_t position, uint32_t bytes) {
    zavri::write_raw(file, base + position, bytes);
  });
  close(file);
  return 0;
}

int32_t loadYuv(uint8_t* base, T_DumpFrameInfo info) {
  if (info.named_by_size == 0) return 0;
  const zavri::LongPath path(info);
  if (!zavri::file_exists(path.text)) {
    __android_log_print(zavri::kLogError, zavri::kTagProcessing,
                        "[ZavriDebug] night shot dump yuv, file exist, file is not exist");
    return 0;
  }
  // On purpose the file is opened as for a dump. The result is not checked: after a failure the
  // calls below fail one by one.
  const int file = zavri::open_raw(path.text, zavri::kCreate);
  zavri::for_each_stretch(info, [&](uint32_t position, uint32_t bytes) {
    zavri::read_raw(file, base + position, bytes);
  });
  close(file);
  return 0;
}
