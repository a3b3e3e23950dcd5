// A shared object that is loaded before the others: the vendor's functions otherwise than the
// portable ones, and a library that is wrong in one of its measures.
#include "include/zavricustpro.h"
#include "platform/fastcv.h"
#include "tests/support/altered_scaler.h"

using namespace zavri::testing;

int fcvScaleu8(const uint8_t* src, uint32_t src_width, uint32_t src_height, uint32_t src_stride,
               uint8_t* dst, uint32_t dst_width, uint32_t dst_height, uint32_t dst_stride,
               int /*interpolation*/) {
  return altered_poly<corners, triangle>(src, src_width, src_height, src_stride, dst, dst_width,
                                         dst_height, dst_stride);
}

int fcvScaleUpPolyu8(const uint8_t* src, uint32_t src_width, uint32_t src_height,
                     uint32_t src_stride, uint8_t* dst, uint32_t dst_width, uint32_t dst_height,
                     uint32_t dst_stride) {
  return altered_poly<centres, triangle>(src, src_width, src_height, src_stride, dst, dst_width,
                                         dst_height, dst_stride);
}

void fcvFilterGaussian5x5u8(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst,
                            int blur_border) {
  altered_gaussian<reflected, 128>(src, width, height, dst, blur_border);
}

uint32_t zavri_auto_shoot_opt_get_bright(const uint8_t* /*luma*/, const T_OptRect* /*rect*/,
                                         uint32_t /*width*/, uint32_t /*height*/) {
  return 7;
}
