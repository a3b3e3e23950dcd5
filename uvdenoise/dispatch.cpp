#include "include/zavricustpro.h"
#include "uvdenoise/chroma_strip.h"

namespace {

// Runs one strip if both of a task's arguments are there.
template <class Denoise>
void run_strip(const void* strip, const void* param, Denoise denoise) {
  if (strip == nullptr || param == nullptr) return;
  denoise(*static_cast<const uint32_t*>(strip), *static_cast<const T_UVDenoiseParam*>(param));
}

template <const zavri::Taps& kTaps>
void weighted(uint32_t strip, const T_UVDenoiseParam& param) {
  zavri::weighted_denoise(kTaps, strip, param);
}

// A size that does not exist must not switch the filter off.
const zavri::Taps& taps_of(int8_t kernel_size) {
  switch (kernel_size) {
    case 7:
      return zavri::kTaps7;
    case 15:
      return zavri::kTaps15;
    case 19:
      return zavri::kTaps19;
    default:
      return zavri::kTaps11;
  }
}

}  // namespace

uint32_t zavri_mp_single_UV_denoise(T_UVDenoiseParam*) { return 0; }

void zavri_mp_UV_denoise_inner(const void* strip, const void* param, void*) {
  run_strip(strip, param, [](uint32_t number, const T_UVDenoiseParam& p) {
    if (p.threshold != 0) zavri::weighted_denoise(taps_of(p.kernel_size), number, p);
  });
}

void zavri_mp_single_UV_denoise_new_inner_7(const void* strip, const void* param, void*) {
  run_strip(strip, param, weighted<zavri::kTaps7>);
}

void zavri_mp_single_UV_denoise_new_inner_11(const void* strip, const void* param, void*) {
  run_strip(strip, param, weighted<zavri::kTaps11>);
}

void zavri_mp_single_UV_denoise_new_inner_15(const void* strip, const void* param, void*) {
  run_strip(strip, param, weighted<zavri::kTaps15>);
}

void zavri_mp_single_UV_denoise_new_inner_19(const void* strip, const void* param, void*) {
  run_strip(strip, param, weighted<zavri::kTaps19>);
}

void zavri_mp_single_UV_denoise_inner_11(const void* strip, const void* param, void*) {
  run_strip(strip, param, zavri::tolerant_denoise);
}
