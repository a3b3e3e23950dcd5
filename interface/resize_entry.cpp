#include "include/zavricustpro.h"
#include "interface/heavy_operation.h"
#include "platform/log.h"

using zavri::kLogError;
using zavri::kTagProcessing;

namespace {

constexpr uint32_t kDone = 0;
constexpr uint32_t kReduction = 1;
constexpr uint32_t kBadParameter = 2;

bool is_valid(const T_ResizeParam* p) {
  if (p == nullptr) return false;
  if (!p->dst_uv || !p->dst_y || !p->src_uv || !p->src_y) return false;
  if (!p->src_height || !p->src_width || !p->dst_width || !p->dst_height || !p->src_stride ||
      !p->dst_stride) {
    return false;
  }
  // Heights may be odd.
  return ((p->dst_width | p->src_width | p->src_stride | p->dst_stride) & 1) == 0;
}

// The strides are compared too: a frame with less row padding counts as a smaller one.
bool is_enlargement(const T_ResizeParam& p) {
  return p.src_width <= p.dst_width && p.src_height <= p.dst_height && p.src_stride <= p.dst_stride;
}

// Returns how many luma rows strips 0..2 have: an even number, so that their chroma rows are whole.
// Strip 3 has what is left.
uint32_t strip_rows(uint32_t height) {
  const uint32_t quarter = height / 4;
  return quarter + quarter % 2;
}

void fill_strips(const T_ResizeParam& param, T_ResizeParam (&strips)[kZavriStrips]) {
  const uint32_t src_rows = strip_rows(param.src_height);
  const uint32_t dst_rows = strip_rows(param.dst_height);
  const uint32_t src_bytes = src_rows * param.src_stride;
  const uint32_t dst_bytes = dst_rows * param.dst_stride;
  for (uint32_t k = 0; k < kZavriStrips; ++k) {
    T_ResizeParam& strip = strips[k];
    strip = param;
    // At a height of 4 three strips have 6 rows: the last one's -2 wraps around to 65534.
    const bool last = k == kZavriLastStrip;
    strip.src_height =
        static_cast<uint16_t>(last ? param.src_height - kZavriLastStrip * src_rows : src_rows);
    strip.dst_height =
        static_cast<uint16_t>(last ? param.dst_height - kZavriLastStrip * dst_rows : dst_rows);
    strip.src_y = param.src_y + k * src_bytes;
    strip.src_uv = param.src_uv + k * src_bytes / 2;
    strip.dst_y = param.dst_y + k * dst_bytes;
    strip.dst_uv = param.dst_uv + k * dst_bytes / 2;
  }
}

}  // namespace

uint32_t zavri_mp_resize_process(T_ResizeParam* param) {
  const auto log = [](const char* line) {
    __android_log_print(kLogError, kTagProcessing, "%s", line);
  };
  log("zavri-mp::resize begin");
  if (!is_valid(param)) {
    log("zavri-mp::resize para error !!!");
    return kBadParameter;
  }
  if (!is_enlargement(*param)) {
    log("zavri-mp::down scale. sorry, It is not surpport now.");
    return kReduction;
  }

  T_ResizeParam strips[kZavriStrips];
  const auto prepare = [&](T_ThreadPoolTaskInput* inputs) {
    fill_strips(*param, strips);
    for (int i = 0; i < kZavriStrips; ++i) inputs[i] = {&strips[i], nullptr, nullptr};
  };
  zavri::run_heavy_operation(zavri_mp_yuv_resize_inner, prepare, "zavri-mp::resize end");
  return kDone;
}
