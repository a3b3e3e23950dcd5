/* The chroma denoise smooths one frame's chroma where it varies little, and keeps its edges. */
#ifndef ZAVRICUSTPRO_CHROMA_DENOISE_H_
#define ZAVRICUSTPRO_CHROMA_DENOISE_H_

#include "base.h"

#ifdef __cplusplus
extern "C" {
#endif

/* This record describes one chroma denoise; the library only reads it. A chroma plane is filtered
 * in place in four strips of q = height/4 rows, the last of which takes the rest; the caller runs
 * them. Only every second pair of every second row, counted from the strip's first, is filtered:
 * along its row and then down its column, each with a window of K such pairs. What lies between is
 * interpolated.
 *
 * Neither the plane's size nor its stride is checked. With r = (K - 1)/2, the last strip must have
 * at least 4*r rows (a height of at least 4*r + 3*q), width must be even and at least 60, 96, 112
 * or 128 for K = 7, 11, 15 or 19 (40 with the fixed tolerance), and stride at least width and below
 * 32768. Low planes need room before their first and behind their last row: see
 * zavri_room_uv_denoise_before and zavri_room_uv_denoise.
 *
 * Strips 0 to 2 also read the 2*r filtered rows after their own, which lie in the next strip, write
 * the first r of them and fill row 0 of the next strip. So the strips may run at the same time, but
 * what these rows become then depends on timing; one after the other in ascending order, the result
 * is always the same. */
typedef struct tagT_UVDenoiseParam {
  uint32_t reserved; /* is not read */
  uint32_t width;    /* bytes of a chroma row that hold pairs: the image's width in pixels */
  uint32_t height;   /* chroma rows */
  uint32_t stride;   /* bytes from row to row */
  uint8_t* uv_plane;
  int8_t kernel_size; /* K: 7, 11, 15 or 19; any other value is taken as 11 */
  int8_t threshold;   /* 0: nothing is done. A neighbour whose U and V both differ from the centre's
                         by less than this counts; below 0 none does */
  int8_t weight_table[127]; /* a neighbour counts weight_table[d], where d is the larger of the two
                               differences, and the centre counts 64. Only [0, threshold) is read
                               and need exist. Weights below 0 must not let a sum of weights become
                               0: it is divided by. Only tables without weights below 0 and with
                               n * max(d * w[d]) + (64 + n * max(w)) / 2 <= 32767 are fast, where n
                               is 10, 15, 15 or 18 for K = 7, 11, 15 or 19; others take up to ten
                               times as long */
} T_UVDenoiseParam;

/* Filters one strip, shaped as a pool task: `strip` points to the uint32_t strip number 0..3,
 * `param` to a T_UVDenoiseParam, `unused` is ignored. Does nothing when either is null. It takes no
 * lock and no memory. */
ZAVRI_EXPORT void zavri_mp_UV_denoise_inner(const void* strip, const void* param, void* unused);

/* These take a fixed K, whatever kernel_size says, and with a threshold of 0 they interpolate. */
ZAVRI_EXPORT void zavri_mp_single_UV_denoise_new_inner_7(const void* strip, const void* param,
                                                         void* unused);
ZAVRI_EXPORT void zavri_mp_single_UV_denoise_new_inner_11(const void* strip, const void* param,
                                                          void* unused);
ZAVRI_EXPORT void zavri_mp_single_UV_denoise_new_inner_15(const void* strip, const void* param,
                                                          void* unused);
ZAVRI_EXPORT void zavri_mp_single_UV_denoise_new_inner_19(const void* strip, const void* param,
                                                          void* unused);

/* This older form with K = 11 takes plain means of the neighbours whose U is less than 20 away and
 * whose V is less than 20 below the centre's (however far above). It reads neither kernel_size nor
 * threshold nor weight_table. */
ZAVRI_EXPORT void zavri_mp_single_UV_denoise_inner_11(const void* strip, const void* param,
                                                      void* unused);

/* Does nothing and returns 0. */
ZAVRI_EXPORT uint32_t zavri_mp_single_UV_denoise(T_UVDenoiseParam* param);

/* These functions say how many bytes the strips of one record may touch, for the K of its
 * kernel_size. The fixed tolerance stays within the plane's rows whatever they say. docs/memory.md
 * derives the bounds. */

/* This is r: a window has so many filtered pairs to either side of its centre. */
static inline size_t zavri_room_uv_denoise_reach(const T_UVDenoiseParam* param) {
  switch (param->kernel_size) {
    case 7:
      return 3;
    case 15:
      return 7;
    case 19:
      return 9;
    default:
      return 5;
  }
}

/* Strip 0 reads this many bytes before uv_plane. They are 0 from q = 4*r on. */
static inline size_t zavri_room_uv_denoise_before(const T_UVDenoiseParam* param) {
  const size_t window = 2 * zavri_room_uv_denoise_reach(param);
  const size_t grid_rows = param->height / kZavriStrips / 2;
  return grid_rows < window ? 2 * (window - grid_rows) * param->stride : 0;
}

/* Strip 3 reads up to this many bytes from uv_plane on. They are the plane's own from q = 6*r on.
 */
static inline size_t zavri_room_uv_denoise(const T_UVDenoiseParam* param) {
  const size_t quarter = param->height / kZavriStrips;
  const size_t last = kZavriLastStrip * quarter + 2 * (3 * zavri_room_uv_denoise_reach(param) - 1);
  const size_t rows = last < param->height ? param->height : last + 1;
  return (rows - 1) * param->stride + param->width;
}

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* ZAVRICUSTPRO_CHROMA_DENOISE_H_ */
