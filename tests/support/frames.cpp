#include "tests/support/frames.h"

#include <utility>

std::ostream& operator<<(std::ostream& out, const T_3DYuvDenoiseParam& p) {
  return out << p.width << 'x' << p.height << " strides " << p.y_stride << ' ' << p.uv_stride
             << " chroma at " << p.uv_offset << " frame " << +p.ref_index << " of " << +p.frame_num
             << " switches " << +p.switch_a << ' ' << +p.switch_b << ' ' << +p.switch_c << ' '
             << +p.switch_d << " tune " << +p.thresh_tune << " gain " << +p.gain << " thresholds "
             << +p.thresh << ' ' << +p.threshY;
}

namespace zavri::testing {
namespace {

constexpr size_t kGuard = 64;

}  // namespace

Frames::Frames(uint32_t width, uint32_t height, uint32_t y_stride, uint32_t uv_stride,
               uint32_t gap) {
  param.width = width;
  param.height = height;
  param.y_stride = y_stride;
  param.uv_stride = uv_stride;
  param.uv_offset = y_stride * height + gap;
}

Frames::Frames(const Frames& other) : param(other.param) {
  for (int k = 0; k < 4; ++k) {
    if (!other.bytes_[k].empty()) set(k, other.bytes_[k]);
  }
}

size_t Frames::size() const {
  const size_t luma_behind = size_t{4} * (param.y_stride + param.width);
  const size_t chroma = (param.height / 2 + size_t{2}) * (size_t{param.uv_stride} + param.width);
  return kGuard + param.uv_offset + luma_behind + chroma;
}

void Frames::set(int k, std::vector<uint8_t> bytes) {
  bytes_[k] = std::move(bytes);
  param.frame_y[k] = bytes_[k].data() + kGuard;
}

void run_strip(const T_3DYuvDenoiseParam& param, int32_t strip) {
  zavri_mp_3D_YUV_denoise_inner(&strip, &param, nullptr);
}

}  // namespace zavri::testing
