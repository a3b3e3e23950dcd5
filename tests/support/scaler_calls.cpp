#include "tests/support/scaler_calls.h"

#include <algorithm>
#include <mutex>
#include <tuple>

namespace zavri::testing {
namespace {

std::mutex g_mutex;
bool g_recording = false;
std::vector<ScalerCall> g_calls;

// False when nobody records.
bool record(ScalerCall call) {
  const std::lock_guard<std::mutex> lock(g_mutex);
  if (!g_recording) return false;
  call.thread = std::this_thread::get_id();
  g_calls.push_back(call);
  const size_t bytes = std::min(size_t{call.src_height} * call.src_stride,
                                size_t{call.dst_height} * call.dst_stride);
  for (size_t i = 0; i < bytes; ++i) call.dst[i] = static_cast<uint8_t>(~call.src[i]);
  return true;
}

auto sizes(const ScalerCall& c) {
  return std::tie(c.function, c.src_width, c.src_height, c.src_stride, c.dst_width, c.dst_height,
                  c.dst_stride, c.interpolation);
}

}  // namespace

bool operator==(const ScalerCall& a, const ScalerCall& b) { return sizes(a) == sizes(b); }

std::ostream& operator<<(std::ostream& out, const ScalerCall& c) {
  return out << (c.function == ScalerCall::kScale ? "scale " : "poly ") << c.src_width << 'x'
             << c.src_height << '/' << c.src_stride << " -> " << c.dst_width << 'x' << c.dst_height
             << '/' << c.dst_stride << " interpolation " << c.interpolation;
}

RecordScalerCalls::RecordScalerCalls() {
  g_calls.clear();
  g_recording = true;
}

RecordScalerCalls::~RecordScalerCalls() { g_recording = false; }

const std::vector<ScalerCall>& RecordScalerCalls::calls() const { return g_calls; }

}  // namespace zavri::testing

extern "C" {

using zavri::testing::record;
using zavri::testing::ScalerCall;

int __real_fcvScaleu8(const uint8_t*, uint32_t, uint32_t, uint32_t, uint8_t*, uint32_t, uint32_t,
                      uint32_t, int);
int __wrap_fcvScaleu8(const uint8_t* src, uint32_t src_width, uint32_t src_height,
                      uint32_t src_stride, uint8_t* dst, uint32_t dst_width, uint32_t dst_height,
                      uint32_t dst_stride, int interpolation) {
  if (record({ScalerCall::kScale,
              src_width,
              src_height,
              src_stride,
              dst_width,
              dst_height,
              dst_stride,
              interpolation,
              src,
              dst,
              {}})) {
    return 0;
  }
  return __real_fcvScaleu8(src, src_width, src_height, src_stride, dst, dst_width, dst_height,
                           dst_stride, interpolation);
}

int __real_fcvScaleUpPolyu8(const uint8_t*, uint32_t, uint32_t, uint32_t, uint8_t*, uint32_t,
                            uint32_t, uint32_t);
int __wrap_fcvScaleUpPolyu8(const uint8_t* src, uint32_t src_width, uint32_t src_height,
                            uint32_t src_stride, uint8_t* dst, uint32_t dst_width,
                            uint32_t dst_height, uint32_t dst_stride) {
  if (record({ScalerCall::kScaleUpPoly,
              src_width,
              src_height,
              src_stride,
              dst_width,
              dst_height,
              dst_stride,
              -1,
              src,
              dst,
              {}})) {
    return 0;
  }
  return __real_fcvScaleUpPolyu8(src, src_width, src_height, src_stride, dst, dst_width, dst_height,
                                 dst_stride);
}
}
