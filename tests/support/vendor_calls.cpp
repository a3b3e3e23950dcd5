#include "tests/support/vendor_calls.h"

#include <algorithm>
#include <mutex>
#include <tuple>
#include <utility>

#include "tests/support/system_faults.h"

namespace zavri::testing {
namespace {

SpinLock g_calls_mutex;
std::vector<ScalerCall> g_scaler_calls;
std::vector<GaussianCall> g_gaussian_calls;

void record(ScalerCall call) {
  const std::lock_guard<SpinLock> lock(g_calls_mutex);
  call.thread = std::this_thread::get_id();
  call.first = call.src_height > 0 ? call.src[0] : 0;
  g_scaler_calls.push_back(call);
  const size_t bytes = std::min(size_t{call.src_height} * call.src_stride,
                                size_t{call.dst_height} * call.dst_stride);
  for (size_t i = 0; i < bytes; ++i) call.dst[i] = static_cast<uint8_t>(~call.src[i]);
}

auto sizes(const ScalerCall& c) {
  return std::tie(c.function, c.src_width, c.src_height, c.src_stride, c.dst_width, c.dst_height,
                  c.dst_stride, c.interpolation, c.first);
}

}  // namespace

bool operator==(const ScalerCall& a, const ScalerCall& b) { return sizes(a) == sizes(b); }

std::ostream& operator<<(std::ostream& out, const ScalerCall& c) {
  return out << (c.function == ScalerCall::kScale ? "scale " : "poly ") << c.src_width << 'x'
             << c.src_height << '/' << c.src_stride << " -> " << c.dst_width << 'x' << c.dst_height
             << '/' << c.dst_stride << " interpolation " << c.interpolation;
}

std::vector<ScalerCall> take_scaler_calls() {
  const std::lock_guard<SpinLock> lock(g_calls_mutex);
  return std::exchange(g_scaler_calls, {});
}

std::vector<GaussianCall> take_gaussian_calls() {
  const std::lock_guard<SpinLock> lock(g_calls_mutex);
  return std::exchange(g_gaussian_calls, {});
}

}  // namespace zavri::testing

extern "C" {

using zavri::testing::record;
using zavri::testing::ScalerCall;

// clang-format off
int __wrap_fcvScaleu8(const uint8_t* src, uint32_t w, uint32_t h, uint32_t stride, uint8_t* dst,
                      uint32_t dst_w, uint32_t dst_h, uint32_t dst_stride, int interpolation) {
  record({ScalerCall::kScale, w, h, stride, dst_w, dst_h, dst_stride, interpolation, 0, src, dst, {}});
  return 0;
}

int __wrap_fcvScaleUpPolyu8(const uint8_t* src, uint32_t w, uint32_t h, uint32_t stride,
                            uint8_t* dst, uint32_t dst_w, uint32_t dst_h, uint32_t dst_stride) {
  record({ScalerCall::kScaleUpPoly, w, h, stride, dst_w, dst_h, dst_stride, -1, 0, src, dst, {}});
  return 0;
}
// clang-format on

void __real_fcvFilterGaussian5x5u8(const uint8_t* src, uint32_t w, uint32_t h, uint8_t* dst,
                                   int blur_border);

void __wrap_fcvFilterGaussian5x5u8(const uint8_t* src, uint32_t w, uint32_t h, uint8_t* dst,
                                   int blur_border) {
  {
    const std::lock_guard<zavri::testing::SpinLock> lock(zavri::testing::g_calls_mutex);
    zavri::testing::g_gaussian_calls.push_back({src, w, h, dst, blur_border});
  }
  __real_fcvFilterGaussian5x5u8(src, w, h, dst, blur_border);
}
}
