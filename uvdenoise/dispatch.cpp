#include "include/zavricustpro.h"
#include "uvdenoise/chroma_strip.h"

namespace {

// Runs one strip if both of a task's arguments are there.
template <class Denoise>
void run_strip(const void* strip, const void* param, Denoise denoise) {
  if (strip == nullptr || param == nullptr) return;
  denoise(*static_cast<const uint32_t*>(strip), *static_cast<const T_UVDenoiseParam*>(param));
}

template <int kTaps>
void weighted(uint32_t strip, const T_UVDenoiseParam& param) {
  zavri::weighted_denoise(kTaps, strip, param);
}

}  // namespace

uint32_t zavri_mp_single_UV_denoise(T_UVDenoiseParam*) { return 0; }

void zavri_mp_UV_denoise_inner(const void* strip, const void* param, void*) {
  run_strip(strip, param, [](uint32_t number, const T_UVDenoiseParam& p) {
    if (p.threshold == 0) return;
    const int taps = p.kernel_size;
    // A size that does not exist must not switch the filter off.
    const bool exists = taps == 7 || taps == 15 || taps == 19;
    zavri::weighted_denoise(exists ? taps : 11, number, p);
  });
}

void zavri_mp_single_UV_denoise_new_inner_7(const void* strip, const void* param, void*) {
  run_strip(strip, param, weighted<7>);
}

void zavri_mp_single_UV_denoise_new_inner_11(const void* strip, const void* param, void*) {
  run_strip(strip, param, weighted<11>);
}

void zavri_mp_single_UV_denoise_new_inner_15(const void* strip, const void* param, void*) {
  run_strip(strip, param, weighted<15>);
}

void zavri_mp_single_UV_denoise_new_inner_19(const void* strip, const void* param, void*) {
  run_strip(strip, param, weighted<19>);
}

void zavri_mp_single_UV_denoise_inner_11(const void* strip, const void* param, void*) {
  run_strip(strip, param, zavri::tolerant_denoise);
}
