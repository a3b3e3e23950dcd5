// Fuzzes the multi-frame denoise with records of every shape. The frames have exactly the room that
// the header asks for, so that the address sanitizer sees the first byte outside.
#if __has_include(<sanitizer/asan_interface.h>)
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(from, size) ((void)(from), (void)(size))
#endif

#include <algorithm>

#include "fuzz/fuzzing.h"
#include "include/zavricustpro.h"
#include "interface/threshold_tuning.h"

using namespace zavri::fuzzing;

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

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  T_3DYuvDenoiseParam p = read_record(input);
  const size_t luma = zavri_room_denoise_luma(&p);
  // The chroma plane lies directly behind the luma plane, or behind a stretch that nothing touches.
  const bool apart = input.flag() || !kSharedBytes;
  p.uv_offset =
      static_cast<uint32_t>(apart ? luma + 32 + input.below(32) : size_t{p.y_stride} * p.height);
  const size_t bytes = std::max(luma, p.uv_offset + zavri_room_denoise_chroma(&p));
  Picture picture(input);
  Bytes frames[4];
  for (uint32_t k = 0; k < 4 && k < p.frame_num; ++k) frames[k] = picture.plane(bytes);

  // Returns the reference frame after `denoise`.
  const auto denoised = [&](auto denoise) {
    Bytes worked[4] = {frames[0], frames[1], frames[2], frames[3]};
    for (uint32_t k = 0; k < 4; ++k) {
      p.frame_y[k] = nullptr;
      if (worked[k].empty()) continue;
      p.frame_y[k] = worked[k].data();
      if (!apart) continue;
      // The stretch is poisoned in granules of 8 bytes: none that the chroma plane has a part of.
      ASAN_POISON_MEMORY_REGION(p.frame_y[k] + luma, (p.uv_offset - luma) & ~size_t{7});
    }
    denoise();
    const uint8_t* const reference = p.frame_y[p.ref_index];
    Bytes result(reference, reference + luma);
    result.insert(result.end(), reference + p.uv_offset, reference + bytes);
    return result;
  };
  denoised([&] {
    if (zavri_mp_3D_YUV_denoise(&p) != 0) abort();
  });
  // The record has the thresholds now.
  expect_one_result([&] {
    return denoised([&] {
      for (int32_t strip = 0; strip < kZavriStrips; ++strip) {
        zavri_mp_3D_YUV_denoise_inner(&strip, &p, nullptr);
      }
    });
  });
  return 0;
}
