#include "device/scaler.h"

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

#include "platform/host/gaussian.h"
#include "platform/host/scale.h"

namespace zavri::device {
namespace {

decltype(Scaler::gaussian) g_gaussian = nullptr;

int scale_with(host::Interpolation interpolation, const host::Source& source,
               const host::Target& target) {
  constexpr int kNoResources = 5;
  return host::scale(source, target, interpolation) ? 0 : kNoResources;
}

int scale_linear(const uint8_t* src, uint32_t src_width, uint32_t src_height, uint32_t src_stride,
                 uint8_t* dst, uint32_t dst_width, uint32_t dst_height, uint32_t dst_stride, int) {
  return scale_with(host::Interpolation::kLinear, {src, src_width, src_height, src_stride},
                    {dst, dst_width, dst_height, dst_stride});
}

int scale_spline(const uint8_t* src, uint32_t src_width, uint32_t src_height, uint32_t src_stride,
                 uint8_t* dst, uint32_t dst_width, uint32_t dst_height, uint32_t dst_stride) {
  return scale_with(host::Interpolation::kSpline, {src, src_width, src_height, src_stride},
                    {dst, dst_width, dst_height, dst_stride});
}

void blur(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst, int blur_border) {
  host::blur_gaussian(src, width, height, dst, blur_border != 0);
}

}  // namespace

// The Gaussian is looked up, since its plain name means this program's own function.
Scaler loaded_scaler() {
  static const auto gaussian =
      reinterpret_cast<decltype(Scaler::gaussian)>(dlsym(RTLD_NEXT, "fcvFilterGaussian5x5u8"));
  if (gaussian == nullptr) {
    fputs("zavri-device: no fcvFilterGaussian5x5u8 in the libfastcvopt.so that is loaded\n",
          stderr);
    exit(2);
  }
  return {fcvScaleu8, fcvScaleUpPolyu8, gaussian};
}

Scaler portable_scaler() { return {scale_linear, scale_spline, blur}; }

void use_gaussian(decltype(Scaler::gaussian) gaussian) { g_gaussian = gaussian; }

}  // namespace zavri::device

// Overrides the Gaussian that is loaded, for the library too.
__attribute__((visibility("default"))) void fcvFilterGaussian5x5u8(const uint8_t* src,
                                                                   uint32_t src_width,
                                                                   uint32_t src_height,
                                                                   uint8_t* dst, int blur_border) {
  using namespace zavri::device;
  const auto gaussian = g_gaussian != nullptr ? g_gaussian : loaded_scaler().gaussian;
  gaussian(src, src_width, src_height, dst, blur_border);
}
