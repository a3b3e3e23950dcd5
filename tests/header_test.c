/* Uses the public header as a C program does, and the shared object behind it. */
#include <assert.h>
#include <stdio.h>
#include <string.h>

#include "zavricustpro.h"

/* Offsets of fields; behind pointers, those of a phone's 32 bits. */
#define AT(type, field, offset) (offsetof(type, field) == (offset))
#define AT_32(type, field, offset) (sizeof(void*) != 4 || AT(type, field, offset))

static_assert(AT(T_GainThreshPoint, value, 1) && sizeof(T_GainThreshPoint) == 2,
              "T_GainThreshPoint");
static_assert(AT(T_3DYuvDenoiseParam, ref_index, 0) && AT(T_3DYuvDenoiseParam, frame_num, 1) &&
                  AT(T_3DYuvDenoiseParam, switch_a, 2) && AT(T_3DYuvDenoiseParam, switch_b, 3) &&
                  AT(T_3DYuvDenoiseParam, switch_c, 4) && AT(T_3DYuvDenoiseParam, thresh_tune, 5) &&
                  AT(T_3DYuvDenoiseParam, switch_d, 6) && AT(T_3DYuvDenoiseParam, gain, 7) &&
                  AT(T_3DYuvDenoiseParam, width, 8) && AT(T_3DYuvDenoiseParam, height, 12) &&
                  AT(T_3DYuvDenoiseParam, y_stride, 16) && AT(T_3DYuvDenoiseParam, uv_stride, 20) &&
                  AT(T_3DYuvDenoiseParam, uv_offset, 28) && AT(T_3DYuvDenoiseParam, thresh, 32) &&
                  AT(T_3DYuvDenoiseParam, thresh_table_len, 33) &&
                  AT_32(T_3DYuvDenoiseParam, thresh_table, 36) &&
                  AT_32(T_3DYuvDenoiseParam, threshY, 40) &&
                  AT_32(T_3DYuvDenoiseParam, threshY_table_len, 41) &&
                  AT_32(T_3DYuvDenoiseParam, threshY_table, 44) &&
                  AT_32(T_3DYuvDenoiseParam, frame_y, 48) &&
                  (sizeof(void*) != 4 || sizeof(T_3DYuvDenoiseParam) == 64),
              "T_3DYuvDenoiseParam");
static_assert(AT(T_ResizeParam, scale_mode, 0) && AT(T_ResizeParam, src_width, 2) &&
                  AT(T_ResizeParam, src_height, 4) && AT(T_ResizeParam, src_stride, 6) &&
                  AT(T_ResizeParam, src_y, 8) && AT_32(T_ResizeParam, src_uv, 12) &&
                  AT_32(T_ResizeParam, dst_width, 16) && AT_32(T_ResizeParam, dst_height, 18) &&
                  AT_32(T_ResizeParam, dst_stride, 20) && AT_32(T_ResizeParam, dst_y, 24) &&
                  AT_32(T_ResizeParam, dst_uv, 28) &&
                  (sizeof(void*) != 4 || sizeof(T_ResizeParam) == 32),
              "T_ResizeParam");
static_assert(AT(T_ComposeParam, width, 0) && AT(T_ComposeParam, height, 2) &&
                  AT(T_ComposeParam, mode, 4) && AT(T_ComposeParam, padding, 8) &&
                  AT_32(T_ComposeParam, src_frame1, 12) && AT_32(T_ComposeParam, src_frame2, 16) &&
                  AT_32(T_ComposeParam, dst_frame, 20) &&
                  (sizeof(void*) != 4 || sizeof(T_ComposeParam) == 24),
              "T_ComposeParam");
static_assert(AT(T_UVDenoiseParam, width, 4) && AT(T_UVDenoiseParam, height, 8) &&
                  AT(T_UVDenoiseParam, stride, 12) && AT(T_UVDenoiseParam, uv_plane, 16) &&
                  AT_32(T_UVDenoiseParam, kernel_size, 20) &&
                  AT_32(T_UVDenoiseParam, threshold, 21) &&
                  AT_32(T_UVDenoiseParam, weight_table, 22),
              "T_UVDenoiseParam");
static_assert(AT(T_OptRect, y, 4) && AT(T_OptRect, width, 8) && sizeof(T_OptRect) == 16,
              "T_OptRect");
static_assert(AT(T_DumpPlaneInfo, offset, 4) && AT(T_DumpPlaneInfo, stride, 8) &&
                  AT(T_DumpPlaneInfo, width, 12) && AT(T_DumpPlaneInfo, height, 16) &&
                  sizeof(T_DumpPlaneInfo) == 24,
              "T_DumpPlaneInfo");
static_assert(AT(T_DumpFrameInfo, planes, 1 * 4) && AT(T_DumpFrameInfo, frame_idx, 50 * 4) &&
                  AT(T_DumpFrameInfo, named_by_size, 51 * 4) && sizeof(T_DumpFrameInfo) == 53 * 4,
              "T_DumpFrameInfo");
static_assert(AT(T_ThreadPoolTaskInput, pIn0, 0) &&
                  AT(T_ThreadPoolTaskInput, pOut, sizeof(void*)) &&
                  AT(T_ThreadPoolTaskInput, pIn1, 2 * sizeof(void*)) &&
                  sizeof(T_ThreadPoolTaskInput) == 3 * sizeof(void*),
              "T_ThreadPoolTaskInput");

enum { kWidth = 8, kHeight = 8, kLuma = kWidth * kHeight, kFrame = kLuma * 3 / 2 };

/* docs/memory.md has these figures, of frames of 4000x3000 without row padding. */
static int room_is_right(void) {
  T_3DYuvDenoiseParam denoise = {0};
  T_UVDenoiseParam chroma = {0};
  T_ComposeParam compose = {0};
  denoise.width = denoise.y_stride = denoise.uv_stride = 4000;
  denoise.height = 3000;
  denoise.frame_num = 3;
  denoise.switch_b = 1;
  chroma.width = chroma.stride = 4000;
  chroma.height = 135;
  chroma.kernel_size = 19;
  compose.width = 4000;
  compose.height = 3000;
  return zavri_room_denoise_luma(&denoise) == 12000000u + 750000u &&
         zavri_room_denoise_chroma(&denoise) == 6000000u + 750000u &&
         zavri_room_resize_luma(4000, 3000, 4000) == 12000000u &&
         zavri_room_resize_chroma(3000, 4000) == 6000000u &&
         zavri_room_uv_denoise_before(&chroma) == 4u * 4000u &&
         zavri_room_uv_denoise(&chroma) == 152u * 4000u &&
         zavri_room_compose_frame(&compose) == 18000000u &&
         zavri_room_compose_scratch(&compose) == 9000000u;
}

int main(void) {
  uint8_t frame[kFrame];
  memset(frame, 100, sizeof frame);
  /* One pair of each strip's single chroma row is 4 higher: the mean of the row's 4 pairs is 1
   * higher. */
  for (int row = 0; row < 4; ++row) frame[kLuma + row * kWidth] = 104;

  T_3DYuvDenoiseParam param = {0};
  param.frame_num = 1;
  param.switch_d = 1;
  param.thresh = 2;
  param.width = kWidth;
  param.height = kHeight;
  param.y_stride = kWidth;
  param.uv_stride = kWidth;
  param.uv_offset = kLuma;
  param.frame_y[0] = frame;
  if (zavri_mp_3D_YUV_denoise(&param) != 0) return 1;

  for (int i = 0; i < kFrame; ++i) {
    const int expected = i >= kLuma && i % 2 == 0 ? 101 : 100;
    if (frame[i] != expected) {
      fprintf(stderr, "byte %d is %d, not %d\n", i, frame[i], expected);
      return 1;
    }
  }
  if (!room_is_right()) {
    fprintf(stderr, "zavri_room_\n");
    return 1;
  }
  if (g_threadpool == NULL || g_hal_threadpool_init != 1) return 1;
  if (HALThreadPoolDestroy() != 0 || g_threadpool != NULL) return 1;
  return 0;
}
