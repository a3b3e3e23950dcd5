/* The multi-frame denoise merges up to four captures of one scene into one of them. */
#ifndef ZAVRICUSTPRO_DENOISE_H_
#define ZAVRICUSTPRO_DENOISE_H_

#include "base.h"

#ifdef __cplusplus
extern "C" {
#endif

/* A threshold curve is a list of these points by ascending sensor gain; no two have the same. */
typedef struct tagT_GainThreshPoint {
  uint8_t gain;
  uint8_t value;
} T_GainThreshPoint;

/* This record describes one multi-frame denoise. All frames have the same geometry:
 *
 *   frame_y[k]               -> luma,   `height` rows,   `y_stride` bytes apart
 *   frame_y[k] + uv_offset   -> chroma, `height`/2 rows, `uv_stride` bytes apart
 *
 * The strides are at least `width` (rounded up to even). Edges of 2 or 3 frames and smoothing count
 * columns, rows and strides in 16 bits: width, height and strides below 32768 are safe for both.
 * The reference frame is worked in place, the others are only read.
 *
 * What is merged. A (U, V) pair of another frame agrees when U and V both differ from the
 * reference's by less than a threshold t. The pair becomes the rounded mean of the reference and of
 * all that agree; of three the reference counts twice. Each pair decides for its 2x2 block of luma
 * as well: the same mean of the block's top left samples is written to all four pixels, unless it
 * differs from the reference's sample by a second threshold or more. So the block becomes flat and
 * fine texture loses detail: a block of 100 120 over 120 100, merged with a frame that has 102 in
 * the first place, becomes four times 101.
 *
 *   switches                merges chroma of   merges luma of   thresholds of chroma and luma
 *   switch_a, not _b        the whole frame    the whole frame  thresh, threshY
 *   switch_b, gain < 16     the edges          the edges        a ramp up to threshY, for both
 *   switch_c, gain < 16     nothing            the edges        a ramp up to threshY, for both
 *   all others              the whole frame    nothing          thresh
 *
 * The first line that fits counts. Nothing is merged without thresh_tune, with thresh and threshY
 * both below 2, by the second and the third line with a threshY below 2, and by the last one with a
 * thresh below 2.
 *
 * Edges are worked in the top and the bottom strip alone. With 4 frames they are the left and the
 * right quarter of each row, and the threshold falls from threshY at the frame's side to 2. With 2
 * or 3 frames the two sections are half as wide as the frame and slide to the right by their own
 * width from each row to the next, so that other parts of the picture are merged as well, and the
 * right one has thresholds of up to twice threshY. docs/memory.md shows them.
 *
 * What is smoothed. With switch_d each strip's chroma is smoothed after merging, or alone if there
 * is one frame: pairs in a row that differ from the first of them by less than 20 become their
 * rounded mean, first in the order of memory, row padding included, then down each column. A strip
 * in which nothing is merged for the reasons above is not smoothed either; for one frame thresh or
 * threshY must be 2 or more.
 *
 * Which threshold is used. A value of 1..100 in the record is taken as it is. Any other one is
 * replaced by the curve at `gain`: lines between the points, a line from (0, 0) to the first, and
 * the last value beyond the last. The built-in curve has the points
 *
 *   gain        10   11   15   30
 *   threshold    0    6   16   20
 *
 * Then either value is scaled by the frame's size. The percentage runs on lines through these
 * points of `width` * `height` in whole megapixels. That number wraps at 256, so that a frame of
 * 257 megapixels is scaled as one of 1:
 *
 *   megapixels   1    3    5    8   13   16   20 and more
 *   percent      0   30   45   75   85   90  100
 *
 * On a line the shares of both ends are truncated one by one. So the built-in curve is 11 at a gain
 * of 13, and 15, not 16, at 16; the scale is 15 % at 2 megapixels and 83 % at 12.
 *
 * So a frame below two megapixels gets a threshold of 0, which merges nothing. The result is
 * written back into the record, and a second call with the same record takes it as a requested
 * value and scales it again: at 12 megapixels a `thresh` of 50 is 41 in the first call, 34 in the
 * second and 28 in the third. Set both thresholds before each call.
 *
 * A plane needs more room than its rows: zavri_room_denoise_luma and zavri_room_denoise_chroma say
 * how much. Where the room of luma runs into the chroma plane, the last strip's luma rows overwrite
 * chroma that another strip works on at the same time: leave the room between the planes when the
 * result must not depend on timing.
 */
typedef struct tagT_3DYuvDenoiseParam {
  uint8_t ref_index; /* the frame that is denoised, 0..3 */
  uint8_t frame_num; /* how many frames there are, 1..4; with other values the call derives the
                        thresholds and leaves the frames as they are */
  uint8_t switch_a;  /* switches count as set when they are not 0 */
  uint8_t switch_b;
  uint8_t switch_c;
  uint8_t thresh_tune;      /* set: `thresh` is derived as above; else nothing is merged */
  uint8_t switch_d;         /* chroma is smoothed after merging; one frame is smoothed alone */
  uint8_t gain;             /* the sensor gain at which both curves are taken */
  uint32_t width;           /* pixels */
  uint32_t height;          /* rows */
  uint32_t y_stride;        /* bytes */
  uint32_t uv_stride;       /* bytes */
  uint32_t reserved0;       /* is not read */
  uint32_t uv_offset;       /* bytes from a frame's luma to its chroma */
  uint8_t thresh;           /* in: the requested threshold; out: the one that was used */
  uint8_t thresh_table_len; /* points in thresh_table */
  uint16_t reserved1;       /* is not read */
  const T_GainThreshPoint* thresh_table; /* the curve; null or no points: the built-in one */
  uint8_t threshY; /* the same for luma, derived when switch_a, _b or _c is set */
  uint8_t threshY_table_len;
  uint16_t reserved2; /* is not read */
  const T_GainThreshPoint* threshY_table;
  uint8_t* frame_y[4]; /* luma planes; beyond frame_num only the reference is read */
} T_3DYuvDenoiseParam;

/* Denoises frame_y[ref_index] in place, four strips in parallel on the library's pool, and blocks
 * until they are done. Any thread may call; the heavy operations of a process run one at a time.
 *
 * Returns 0, also when width, height or a stride is 0; nothing is done or logged then. `param` must
 * not be null. The first call creates the pool: HALThreadPoolInit says what happens when threads or
 * memory cannot be had. */
ZAVRI_EXPORT uint32_t zavri_mp_3D_YUV_denoise(T_3DYuvDenoiseParam* param);

/* Denoises one strip, shaped as a pool task: `strip` points to the int32_t strip number 0..3,
 * `param` to a T_3DYuvDenoiseParam whose thresholds are used as they are, `unused` is ignored. Does
 * nothing when either is null. Strips of one frame may run at the same time. */
ZAVRI_EXPORT void zavri_mp_3D_YUV_denoise_inner(const void* strip, const void* param, void* unused);

/* These functions say how many bytes, counted from the first of a plane, one call with this record
 * may touch. A call writes those of the reference frame and reads no more of the others. Only the
 * geometry, frame_num, gain and the switches count. docs/memory.md derives the bounds. */

/* The last strip has this many chroma rows, the others have height / 8. */
static inline size_t zavri_room_denoise_last_rows(const T_3DYuvDenoiseParam* param) {
  const size_t quarter = param->height / 8;
  return param->height / 2 - kZavriLastStrip * quarter;
}

/* The edge sections of the last row end this many bytes behind the frame's own columns. */
static inline size_t zavri_room_denoise_drift(const T_3DYuvDenoiseParam* param) {
  const size_t pairs = param->width / 4;
  if ((!param->switch_b && !param->switch_c) || param->gain >= 16) return 0;
  if (param->frame_num == 4) return 2;
  return 2 * pairs * zavri_room_denoise_last_rows(param);
}

/* Returns the room of luma, from frame_y[k] on. A uv_offset of at least that much keeps the planes
 * apart. */
static inline size_t zavri_room_denoise_luma(const T_3DYuvDenoiseParam* param) {
  const size_t start = kZavriLastStrip * (param->height / 4);
  const size_t rows = start + 2 * zavri_room_denoise_last_rows(param);
  if (rows == 0) return 0;
  return (rows - 1) * param->y_stride + param->width + zavri_room_denoise_drift(param);
}

/* Returns the room of chroma, from frame_y[k] + uv_offset on. */
static inline size_t zavri_room_denoise_chroma(const T_3DYuvDenoiseParam* param) {
  const size_t rows = param->height / 2;
  const size_t stride = param->uv_stride;
  if (rows == 0) return 0;
  const size_t merged = (rows - 1) * stride + param->width + param->width % 2;
  /* The smoothing takes whole rows, and whole pairs. */
  const size_t smoothed = param->switch_d ? rows * stride + stride % 2 : 0;
  return (smoothed < merged ? merged : smoothed) + zavri_room_denoise_drift(param);
}

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* ZAVRICUSTPRO_DENOISE_H_ */
