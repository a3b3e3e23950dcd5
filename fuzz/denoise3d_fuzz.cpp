// Fuzzes the multi-frame denoise with records of every shape. The frames have exactly the room that
// the header asks for, so that the address sanitizer sees the first byte outside.
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

#include "include/zavricustpro.h"
#include "interface/threshold_tuning.h"
#include "platform/log.h"

extern "C" int __android_log_print(int, const char*, const char*, ...) { return 0; }

// Is called instead of zavri::scale_threshold, which would leave frames of less than two megapixels
// no threshold. It is declared with that function's type: a change of the type does not compile.
extern "C" decltype(zavri::scale_threshold) __wrap__ZN5zavri15scale_thresholdEhjj;
uint8_t __wrap__ZN5zavri15scale_thresholdEhjj(uint8_t threshold, uint32_t, uint32_t) {
  return threshold;
}

namespace {

// Strips share bytes where luma rows run into the chroma plane, and a pair where the smoothing of
// an odd chroma stride ends: results then depend on timing, and the thread sanitizer is spared
// them.
#ifdef FUZZ_WITHOUT_RACES
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

// Keeps to the header's contract: strides of at least the width, a reference among the frames.
T_3DYuvDenoiseParam read_record(Input& input) {
  T_3DYuvDenoiseParam p{};
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
  return p;
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
  T_3DYuvDenoiseParam p = read_record(input);
  const size_t luma = zavri_room_denoise_luma(&p);
  // The chroma plane lies directly behind the luma plane, or behind a stretch that nothing touches.
  const bool apart = input.flag() || !kSharedBytes;
  p.uv_offset =
      static_cast<uint32_t>(apart ? luma + 32 + input.below(32) : size_t{p.y_stride} * p.height);
  const size_t bytes = std::max(luma, p.uv_offset + zavri_room_denoise_chroma(&p));
  const uint32_t spread = 1 + input.byte();
  const uint32_t state = input.byte();

  std::unique_ptr<uint8_t[]> frames[4];
  for (uint32_t k = 0; k < 4 && k < p.frame_num; ++k) {
    frames[k].reset(new uint8_t[bytes]);
    fill(frames[k].get(), bytes, state + k, spread);
    p.frame_y[k] = frames[k].get();
    if (!apart) continue;
    // The stretch is poisoned in granules of 8 bytes: none that the chroma plane has a part of.
    const size_t gap = (p.uv_offset - luma) & ~size_t{7};
    ASAN_POISON_MEMORY_REGION(frames[k].get() + luma, gap);
  }

  if (zavri_mp_3D_YUV_denoise(&p) != 0) abort();
  return 0;
}
