#include "include/zavricustpro.h"
#include "interface/process_lock.h"
#include "interface/threshold_tuning.h"
#include "platform/log.h"

using zavri::kLogError;
using zavri::kTagProcessing;

namespace {

uint8_t threshold_for(const T_3DYuvDenoiseParam& param, uint8_t requested,
                      const T_GainThreshPoint* table, uint8_t count) {
  const uint8_t tuned = zavri::tune_threshold(requested, param.gain, table, count);
  return zavri::scale_threshold(tuned, param.width, param.height);
}

}  // namespace

uint32_t zavri_mp_3D_YUV_denoise(T_3DYuvDenoiseParam* param) {
  T_3DYuvDenoiseParam& p = *param;
  if (p.width == 0 || p.height == 0 || p.y_stride == 0 || p.uv_stride == 0) return 0;

  __android_log_print(kLogError, kTagProcessing, "zavri-mp 3dyuv begin");
  pthread_mutex_lock(&g_mp_process_lock);
  HALThreadPoolInit();

  int32_t strips[kZavriStrips];
  T_ThreadPoolTaskInput inputs[kZavriStrips];
  for (int i = 0; i < kZavriStrips; ++i) {
    strips[i] = i;
    inputs[i] = {&strips[i], nullptr, param};
  }

  if (p.thresh_tune) p.thresh = threshold_for(p, p.thresh, p.thresh_table, p.thresh_table_len);
  if (p.switch_a || p.switch_b || p.switch_c) {
    p.threshY = threshold_for(p, p.threshY, p.threshY_table, p.threshY_table_len);
  }
  __android_log_print(kLogError, kTagProcessing,
                      "zavri-mp, height:%d, width:%d, gain:%d, thresh:%d, threshY:%d, num:%d",
                      static_cast<int>(p.height), static_cast<int>(p.width), p.gain, p.thresh,
                      p.threshY, p.frame_num);

  ThreadPoolWorker worker(g_threadpool, kZavriStrips, zavri_mp_3D_YUV_denoise_inner, inputs);
  worker.Work();

  pthread_mutex_unlock(&g_mp_process_lock);
  __android_log_print(kLogError, kTagProcessing, "zavri-mp 3dyuv end");
  return 0;
}
