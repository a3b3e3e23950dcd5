#pragma once

#include <cstdint>

// These are the functions of the vendor's vision library libfastcvopt.so that the library calls,
// with the vendor's signatures. On a phone its choice of taps, rounding and borders holds;
// elsewhere platform/host brings a portable libfastcvopt.so. Sizes are in pixels and strides in
// bytes. Planes must not overlap.

extern "C" {

// Both functions scale an 8-bit plane to another size and return 0 when done.
int fcvScaleu8(const uint8_t* src, uint32_t src_width, uint32_t src_height, uint32_t src_stride,
               uint8_t* dst, uint32_t dst_width, uint32_t dst_height, uint32_t dst_stride,
               int interpolation);
int fcvScaleUpPolyu8(const uint8_t* src, uint32_t src_width, uint32_t src_height,
                     uint32_t src_stride, uint8_t* dst, uint32_t dst_width, uint32_t dst_height,
                     uint32_t dst_stride);

// Blurs an 8-bit plane without row padding by a 5x5 Gaussian. `blur_border` says whether the outer
// two pixels are blurred too.
void fcvFilterGaussian5x5u8(const uint8_t* src, uint32_t src_width, uint32_t src_height,
                            uint8_t* dst, int blur_border);

}  // extern "C"

namespace zavri {

inline constexpr int kInterpolateNearest = 0;
inline constexpr int kInterpolateBilinear = 1;
inline constexpr int kInterpolateArea = 2;

}  // namespace zavri
