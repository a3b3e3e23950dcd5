// These portable functions stand in for those of the vendor that the library calls.
#include "platform/fastcv.h"

#include <initializer_list>

#include "platform/host/gaussian.h"
#include "platform/host/scale.h"

namespace {

using zavri::host::Interpolation;
using zavri::host::Source;
using zavri::host::Target;

// The status codes have the vendor's values.
constexpr int kSuccess = 0;
constexpr int kBadParameter = 3;
constexpr int kNoResources = 5;
constexpr int kUnsupported = 6;

constexpr uint32_t kLargestSize = 0x7fffffff;

int scaled(const Source& source, const Target& target, Interpolation interpolation) {
  for (const uint32_t size : {source.width, source.height, target.width, target.height}) {
    if (size == 0) return kSuccess;
    if (size > kLargestSize) return kBadParameter;
  }
  return zavri::host::scale(source, target, interpolation) ? kSuccess : kNoResources;
}

}  // namespace

#define ZAVRI_VENDOR_FUNCTION extern "C" __attribute__((visibility("default")))

ZAVRI_VENDOR_FUNCTION int fcvScaleu8(const uint8_t* src, uint32_t src_width, uint32_t src_height,
                                     uint32_t src_stride, uint8_t* dst, uint32_t dst_width,
                                     uint32_t dst_height, uint32_t dst_stride, int interpolation) {
  const Source source{src, src_width, src_height, src_stride};
  const Target target{dst, dst_width, dst_height, dst_stride};
  switch (interpolation) {
    case zavri::kInterpolateNearest:
      return scaled(source, target, Interpolation::kNearest);
    case zavri::kInterpolateBilinear:
      return scaled(source, target, Interpolation::kLinear);
    default:
      return kUnsupported;
  }
}

ZAVRI_VENDOR_FUNCTION int fcvScaleUpPolyu8(const uint8_t* src, uint32_t src_width,
                                           uint32_t src_height, uint32_t src_stride, uint8_t* dst,
                                           uint32_t dst_width, uint32_t dst_height,
                                           uint32_t dst_stride) {
  return scaled({src, src_width, src_height, src_stride}, {dst, dst_width, dst_height, dst_stride},
                Interpolation::kSpline);
}

ZAVRI_VENDOR_FUNCTION void fcvFilterGaussian5x5u8(const uint8_t* src, uint32_t src_width,
                                                  uint32_t src_height, uint8_t* dst,
                                                  int blur_border) {
  zavri::host::blur_gaussian(src, src_width, src_height, dst, blur_border != 0);
}
