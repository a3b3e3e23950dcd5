#include <cstdlib>

#include "include/zavricustpro.h"
#include "platform/fastcv.h"
#include "resize/chroma_channels.h"

namespace zavri {
namespace {

constexpr uint16_t kModePoly = 0;
constexpr uint16_t kModeBilinear = 1;

struct ScalePlane {
  const uint8_t* src;
  uint32_t src_width, src_height, src_stride;
  uint8_t* dst;
  uint32_t dst_width, dst_height, dst_stride;
};

// The scaler's status is not looked at: there is nobody to tell.
void scale(uint16_t mode, const ScalePlane& p) {
  if (mode == kModePoly) {
    fcvScaleUpPolyu8(p.src, p.src_width, p.src_height, p.src_stride, p.dst, p.dst_width,
                     p.dst_height, p.dst_stride);
  } else if (mode == kModeBilinear) {
    fcvScaleu8(p.src, p.src_width, p.src_height, p.src_stride, p.dst, p.dst_width, p.dst_height,
               p.dst_stride, kInterpolateBilinear);
  }
}

// Returns the pairs in whole rows of a chroma plane, padding included.
uint32_t pairs_of(uint32_t stride, uint32_t luma_rows) { return stride * luma_rows / 4; }

void resize(const T_ResizeParam& p) {
  const uint32_t src_pairs = pairs_of(p.src_stride, p.src_height);
  const uint32_t dst_pairs = pairs_of(p.dst_stride, p.dst_height);
  // One byte more is taken, because malloc(0) may return null and an empty strip has channels, too.
  const auto allocate = [](uint32_t pairs) {
    return static_cast<uint8_t*>(malloc(size_t{pairs} + 1));
  };
  uint8_t* const src_a = allocate(src_pairs);
  uint8_t* const src_b = allocate(src_pairs);
  uint8_t* const dst_a = allocate(dst_pairs);
  uint8_t* const dst_b = allocate(dst_pairs);

  const ChannelKernels& channels = channel_kernels();
  channels.split(p.src_uv, src_pairs, src_a, src_b);

  const ScalePlane luma{p.src_y, p.src_width, p.src_height, p.src_stride,
                        p.dst_y, p.dst_width, p.dst_height, p.dst_stride};
  const auto channel = [&](const uint8_t* src, uint8_t* dst) {
    return ScalePlane{src, luma.src_width / 2, luma.src_height / 2, luma.src_stride / 2,
                      dst, luma.dst_width / 2, luma.dst_height / 2, luma.dst_stride / 2};
  };
  scale(p.scale_mode, luma);
  scale(p.scale_mode, channel(src_a, dst_a));
  scale(p.scale_mode, channel(src_b, dst_b));

  // Under an unknown mode nothing has been written to the channels: chroma then becomes whatever
  // the scratch held, which is what the header promises.
  channels.merge(dst_a, dst_b, dst_pairs, p.dst_uv);

  free(src_a);
  free(src_b);
  free(dst_a);
  free(dst_b);
}

}  // namespace
}  // namespace zavri

void zavri_mp_yuv_resize_inner(const void* strip, const void*, void*) {
  zavri::resize(*static_cast<const T_ResizeParam*>(strip));
}
