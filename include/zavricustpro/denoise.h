#ifndef ZAVRICUSTPRO_DENOISE_H_
#define ZAVRICUSTPRO_DENOISE_H_

#include "base.h"

#ifdef __cplusplus
extern "C" {
#endif

/* One point of a threshold curve over the sensor gain. */
typedef struct tagT_GainThreshPoint {
  uint8_t gain;
  uint8_t value;
} T_GainThreshPoint;

/* One multi-frame denoise. All frames have the same geometry:
 *
 *   frame_y[k]               -> luma,   `height` rows,   `y_stride` bytes apart
 *   frame_y[k] + uv_offset   -> chroma, `height`/2 rows, `uv_stride` bytes apart
 *
 * The strides are at least `width` (rounded up to even). The reference frame is worked in place,
 * the others are only read.
 *
 * A plane needs more room than its rows: zavri_room_denoise_luma and zavri_room_denoise_chroma say
 * how much. Where the room of luma runs into the chroma plane, the last strip's luma rows overwrite
 * chroma that another strip works on at the same time: leave the room between the planes when the
 * result must not depend on timing.
 */
typedef struct tagT_3DYuvDenoiseParam {
  uint8_t ref_index;        /* frame that is denoised, 0..3 */
  uint8_t frame_num;        /* 1..4; other values do nothing */
  uint8_t switch_a;         /* luma and chroma of the whole frame (only without switch_b) */
  uint8_t switch_b;         /* luma and chroma at the frame's edges, for a gain below 16 */
  uint8_t switch_c;         /* luma alone at the frame's edges, for a gain below 16 */
  uint8_t thresh_tune;      /* derive `thresh` from gain and frame size; 0: nothing is merged */
  uint8_t switch_d;         /* smooth the chroma afterwards; with one frame, that alone */
  uint8_t gain;             /* sensor gain, the abscissa of both curves */
  uint32_t width;           /* pixels */
  uint32_t height;          /* rows */
  uint32_t y_stride;        /* bytes */
  uint32_t uv_stride;       /* bytes */
  uint32_t reserved0;       /* not read */
  uint32_t uv_offset;       /* bytes from a frame's luma to its chroma */
  uint8_t thresh;           /* in: 1..100 requested, else from the curve; out: value used */
  uint8_t thresh_table_len; /* points in thresh_table */
  uint16_t reserved1;       /* not read */
  const T_GainThreshPoint* thresh_table; /* ascending gain; null or no points: the built-in curve */
  uint8_t threshY; /* the same for luma; tuned when switch_a, _b or _c is set */
  uint8_t threshY_table_len;
  uint16_t reserved2; /* not read */
  const T_GainThreshPoint* threshY_table;
  uint8_t* frame_y[4]; /* luma planes; only the reference is read beyond frame_num */
} T_3DYuvDenoiseParam;

/* Denoises frame_y[ref_index] in place from frame_num captures of one scene, four strips in
 * parallel on the library's pool, and blocks until they are done. Writes the thresholds that it
 * used back into the record: a second call with the same record takes them as requested values. Any
 * thread may call; the heavy operations of a process run one at a time. Returns 0, also when width,
 * height or a stride is 0 (then nothing is done or logged). `param` must not be null. */
ZAVRI_EXPORT uint32_t zavri_mp_3D_YUV_denoise(T_3DYuvDenoiseParam* param);

/* One strip of it, shaped as a pool task: `strip` points to the int32_t strip number 0..3, `param`
 * to a T_3DYuvDenoiseParam with tuned thresholds, `unused` is ignored. Does nothing when either is
 * null. Strips of one frame may run at the same time. */
ZAVRI_EXPORT void zavri_mp_3D_YUV_denoise_inner(const void* strip, const void* param, void* unused);

/* Room: how many bytes, counted from the first of a plane, one call with this record may touch. It
 * writes those of the reference frame; of the other frames it reads no more than that. Only the
 * geometry, frame_num, gain and the switches count. docs/memory.md derives the bounds. */

/* Chroma rows of the last strip. The others have height / 8. */
static inline size_t zavri_room_denoise_last_rows(const T_3DYuvDenoiseParam* param) {
  const size_t quarter = param->height / 8;
  return param->height / 2 - (kZavriStrips - 1) * quarter;
}

/* How far the edge sections of the last row end behind the frame's own columns. */
static inline size_t zavri_room_denoise_drift(const T_3DYuvDenoiseParam* param) {
  const size_t pairs = param->width / 4;
  if ((!param->switch_b && !param->switch_c) || param->gain >= 16) return 0;
  if (param->frame_num == 4) return 2;
  return 2 * pairs * zavri_room_denoise_last_rows(param);
}

/* In bytes of luma, from frame_y[k] on. A uv_offset of at least that keeps the planes apart. */
static inline size_t zavri_room_denoise_luma(const T_3DYuvDenoiseParam* param) {
  const size_t start = (kZavriStrips - 1) * (param->height / 4);
  const size_t rows = start + 2 * zavri_room_denoise_last_rows(param);
  if (param->height < 2) return 0;
  return (rows - 1) * param->y_stride + param->width + zavri_room_denoise_drift(param);
}

/* In bytes of chroma, from frame_y[k] + uv_offset on. */
static inline size_t zavri_room_denoise_chroma(const T_3DYuvDenoiseParam* param) {
  const size_t rows = param->height / 2;
  const size_t stride = param->uv_stride;
  const size_t columns = param->width + param->width % 2;
  size_t bytes;
  if (rows == 0) return 0;
  bytes = (rows - 1) * stride + columns;
  /* The smoothing takes whole rows, and whole pairs. */
  if (param->switch_d && bytes < rows * stride + stride % 2) bytes = rows * stride + stride % 2;
  return bytes + zavri_room_denoise_drift(param);
}

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* ZAVRICUSTPRO_DENOISE_H_ */
