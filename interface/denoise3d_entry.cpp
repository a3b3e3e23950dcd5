#include "include/zavricustpro.h"
#include "interface/heavy_operation.h"
#include "interface/threshold_tuning.h"
#include "platform/log.h"

namespace zavri {
namespace {

uint8_t threshold_for(const T_3DYuvDenoiseParam& param, uint8_t requested,
                      const T_GainThreshPoint* table, uint8_t count) {
  const uint8_t tuned = tune_threshold(requested, param.gain, table, count);
  return scale_threshold(tuned, param.width, param.height);
}

// Replaces the thresholds of the record by those that the strips use.
void tune_record(T_3DYuvDenoiseParam& p) {
  if (p.thresh_tune) p.thresh = threshold_for(p, p.thresh, p.thresh_table, p.thresh_table_len);
  if (p.switch_a || p.switch_b || p.switch_c) {
    p.threshY = threshold_for(p, p.threshY, p.threshY_table, p.threshY_table_len);
  }
}

void log_record(const T_3DYuvDenoiseParam& p) {
  __android_log_print(kLogError, kTagProcessing,
                      "zavri-mp, height:%d, width:%d, gain:%d, thresh:%d, threshY:%d, num:%d",
                      static_cast<int>(p.height), static_cast<int>(p.width), p.gain, p.thresh,
                      p.threshY, p.frame_num);
}

}  // namespace
}  // namespace zavri

uint32_t zavri_mp_3D_YUV_denoise(T_3DYuvDenoiseParam* param) {
  T_3DYuvDenoiseParam& p = *param;
  if (p.width == 0 || p.height == 0 || p.y_stride == 0 || p.uv_stride == 0) return 0;

  __android_log_print(zavri::kLogError, zavri::kTagProcessing, "zavri-mp 3dyuv begin");
  int32_t numbers[kZavriStrips];
  const auto prepare = [&](T_ThreadPoolTaskInput* inputs) {
    for (int32_t i = 0; i < kZavriStrips; ++i) {
      numbers[i] = i;
      inputs[i] = {&numbers[i], nullptr, param};
    }
    zavri::tune_record(p);
    zavri::log_record(p);
  };
  zavri::run_heavy_operation(zavri_mp_3D_YUV_denoise_inner, prepare, "zavri-mp 3dyuv end");
  return 0;
}
