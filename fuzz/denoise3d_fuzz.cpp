// The multi-frame denoise on records of every shape. The frames have exactly the room that
// zavricustpro.h asks for, so that the address sanitizer sees the first byte outside.
#if __has_include(<sanitizer/asan_interface.h>)
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(from, size) ((void)(from), (void)(size))
#endif

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

#include "include/zavricustpro.h"
#include "platform/log.h"

extern "C" int __android_log_print(int, const char*, const char*, ...) { return 0; }

// Stands for zavri::scale_threshold, whose megapixels would leave frames of this size no threshold.
extern "C" uint8_t __wrap__ZN5zavri15scale_thresholdEhjj(uint8_t threshold, uint32_t, uint32_t) {
  return threshold;
}

namespace {

// Strips share bytes where luma rows run into the chroma plane, and a pair where the smoothing of
// an odd chroma stride ends: results then depend on timing, and the thread sanitizer is spared
// them.
#ifdef __SANITIZE_THREAD__
constexpr bool kSharedBytes = false;
#else
constexpr bool kSharedBytes = true;
#endif

constexpr size_t even_up(size_t value) { return (value + 1) & ~size_t{1}; }

// Reads the input; zeros follow its end.
class Input {
 public:
  Input(const uint8_t* data, size_t size) : data_(data), end_(data + size) {}

  uint8_t byte() { return data_ == end_ ? uint8_t{0} : *data_++; }
  uint32_t below(uint32_t limit) { return byte() % limit; }
  bool flag() { return (byte() & 1) != 0; }

 private:
  const uint8_t* data_;
  const uint8_t* end_;
};

// Bytes of each plane that one call may touch.
struct Room {
  size_t luma, chroma;
};

Room room_for(const T_3DYuvDenoiseParam& p) {
  const size_t chroma_rows = p.height / 2;
  const size_t last_strip = chroma_rows - 3 * size_t{p.height / 8};
  if (last_strip == 0) return {0, 0};
  const size_t luma_rows = 3 * size_t{p.height / 4} + 2 * last_strip;
  Room room = {(luma_rows - 1) * p.y_stride + p.width,
               (chroma_rows - 1) * p.uv_stride + even_up(p.width)};
  if (p.switch_d) {
    const size_t above = 3 * size_t{p.height / 8} * p.uv_stride;
    room.chroma = std::max(room.chroma, above + even_up(last_strip * p.uv_stride));
  }
  if ((p.switch_b || p.switch_c) && p.gain < 16) {
    const size_t drift = p.frame_num == 4 ? 2 : 2 * size_t{p.width / 4} * last_strip;
    room.luma += drift;
    room.chroma += drift;
  }
  return room;
}

struct Record {
  T_3DYuvDenoiseParam param{};
  std::vector<T_GainThreshPoint> curves[2];
};

std::vector<T_GainThreshPoint> read_curve(Input& input) {
  std::vector<T_GainThreshPoint> curve(input.below(4));
  for (T_GainThreshPoint& point : curve) point = {input.byte(), input.byte()};
  std::sort(curve.begin(), curve.end(), [](auto& a, auto& b) { return a.gain < b.gain; });
  return curve;
}

// Keeps to the header's contract: strides of at least the width, a reference among the frames.
Record read_record(Input& input) {
  Record record;
  T_3DYuvDenoiseParam& p = record.param;
  p.width = 1 + input.below(input.flag() ? 20 : 140);
  p.height = 1 + input.below(40);
  const auto least = static_cast<uint32_t>(even_up(p.width));
  p.y_stride = least + (input.flag() ? input.below(9) : 0);
  p.uv_stride = least + (input.flag() ? input.below(9) : 0);
  if (!kSharedBytes) p.uv_stride = static_cast<uint32_t>(even_up(p.uv_stride));
  p.frame_num = static_cast<uint8_t>(input.below(16) == 0 ? 5 : 1 + input.below(4));
  p.ref_index = static_cast<uint8_t>(input.below(p.frame_num) % 4);
  for (uint8_t* const byte : {&p.switch_a, &p.switch_b, &p.switch_c, &p.switch_d}) {
    *byte = input.flag();
  }
  p.thresh_tune = static_cast<uint8_t>(input.below(8));
  p.gain = static_cast<uint8_t>(input.below(24));
  p.thresh = input.byte();
  p.threshY = input.byte();
  for (auto& curve : record.curves) curve = read_curve(input);
  p.thresh_table = record.curves[0].data();
  p.thresh_table_len = static_cast<uint8_t>(record.curves[0].size());
  p.threshY_table = record.curves[1].data();
  p.threshY_table_len = static_cast<uint8_t>(record.curves[1].size());
  return record;
}

void fill(uint8_t* bytes, size_t size, uint32_t state, uint32_t spread) {
  for (size_t i = 0; i < size; ++i) {
    state = state * 1664525 + 1013904223;
    bytes[i] = static_cast<uint8_t>(60 + (state >> 24) % spread);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  Record record = read_record(input);
  T_3DYuvDenoiseParam& p = record.param;
  const Room room = room_for(p);
  // The chroma plane directly behind the luma plane, or behind a stretch that nothing touches.
  const bool apart = input.flag() || !kSharedBytes;
  p.uv_offset = static_cast<uint32_t>(apart ? room.luma + 32 + input.below(32)
                                            : size_t{p.y_stride} * p.height);
  const size_t bytes = std::max(room.luma, p.uv_offset + room.chroma);
  const uint32_t spread = 1 + input.byte();
  const uint32_t state = input.byte();

  std::unique_ptr<uint8_t[]> frames[4];
  std::unique_ptr<uint8_t[]> copies[4];
  for (uint32_t k = 0; k < 4 && k < p.frame_num; ++k) {
    frames[k].reset(new uint8_t[bytes]);
    fill(frames[k].get(), bytes, state + k, spread);
    p.frame_y[k] = frames[k].get();
    copies[k].reset(new uint8_t[bytes]);
    std::copy_n(frames[k].get(), bytes, copies[k].get());
    if (!apart) continue;
    // Up to the chroma plane's first 8 bytes, the sanitizer's granule.
    const size_t gap = (p.uv_offset - room.luma) & ~size_t{7};
    ASAN_POISON_MEMORY_REGION(frames[k].get() + room.luma, gap);
  }

  if (zavri_mp_3D_YUV_denoise(&p) != 0) abort();

  for (uint32_t k = 0; k < 4 && k < p.frame_num; ++k) {
    if (k == p.ref_index) continue;
    if (!std::equal(copies[k].get(), copies[k].get() + room.luma, frames[k].get())) abort();
    const size_t at = p.uv_offset;
    if (!std::equal(copies[k].get() + at, copies[k].get() + bytes, frames[k].get() + at)) abort();
  }
  return 0;
}
