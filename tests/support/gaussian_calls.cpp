#include "tests/support/gaussian_calls.h"

#include <mutex>
#include <utility>

#include "tests/support/system_faults.h"

namespace zavri::testing {
namespace {

SpinLock g_gaussian_mutex;
std::vector<GaussianCall> g_gaussian_calls;

}  // namespace

std::vector<GaussianCall> take_gaussian_calls() {
  const std::lock_guard<SpinLock> lock(g_gaussian_mutex);
  return std::exchange(g_gaussian_calls, {});
}

}  // namespace zavri::testing

extern "C" {

void __real_fcvFilterGaussian5x5u8(const uint8_t* src, uint32_t w, uint32_t h, uint8_t* dst,
                                   int blur_border);

void __wrap_fcvFilterGaussian5x5u8(const uint8_t* src, uint32_t w, uint32_t h, uint8_t* dst,
                                   int blur_border) {
  {
    const std::lock_guard<zavri::testing::SpinLock> lock(zavri::testing::g_gaussian_mutex);
    zavri::testing::g_gaussian_calls.push_back({src, w, h, dst, blur_border});
  }
  __real_fcvFilterGaussian5x5u8(src, w, h, dst, blur_border);
}
}
