/* The composition shows two frames side by side in one. */
#ifndef ZAVRICUSTPRO_COMPOSE_H_
#define ZAVRICUSTPRO_COMPOSE_H_

#include "base.h"

#ifdef __cplusplus
extern "C" {
#endif

/* This record describes one composition: two frames of one size, each reduced to half width and
 * half height, stand side by side in one frame of that size. A frame has no row padding: `width` *
 * `height` bytes of luma, then `height` / 2 rows of `width` bytes of chroma.
 *
 *     +---------------------------+
 *     |          black            |  height / 4
 *     +------+---------+----------+
 *     | band | frame 1 | frame 2  |  height / 2    mode 0; `mode` and `padding` say where the
 *     +------+---------+----------+                bands stand and how wide they are
 *     |          black            |  height / 4
 *     +---------------------------+
 *
 * Of each 2x2 block of a source the lower left sample is taken, nothing is averaged. The rightmost
 * `padding` columns of the sources are not used. The picture is exact for a `height` that is a
 * multiple of 8, a `width` - `padding` that is a multiple of 4 and, in mode 3, an even `padding`;
 * otherwise rows of the picture slide to the left, and single bytes are 0 or, where `width` *
 * `height` is no multiple of 8, stay as they were.
 */
typedef struct tagT_ComposeParam {
  uint16_t width;    /* pixels */
  uint16_t height;   /* rows; width * height is below 2^32 / 11 */
  uint32_t mode;     /* the band is at the left 0, right 1, centre 2, half at either side 3; above,
                        no frame is drawn, and what is not black is unspecified */
  uint16_t padding;  /* columns of all bands together, 0..width */
  uint16_t reserved; /* is not read */
  const uint8_t* src_frame1;
  const uint8_t* src_frame2;
  uint8_t* dst_frame; /* may be one of the sources */
} T_ComposeParam;

/* Writes dst_frame. Returns 0, or 2 for a null pointer or a size of 0. Any number of threads may
 * compose different records. The call takes a scratch frame (zavri_room_compose_scratch) for its
 * time; when there is no memory for it, dst_frame stays as it was and the result is still 0. */
ZAVRI_EXPORT uint32_t zavri_mp_compose_two_same_frame(T_ComposeParam* param);

/* These write the middle part alone, for modes 0..3: both reduced frames and the bands. `scratch`
 * is a frame of `width` by `height` / 2 without row padding: width * height / 2 bytes of luma, half
 * as many of chroma. `mode` and `dst_frame` are not read. For a height below 4 nothing is written,
 * for a `width` - `padding` below 4 only the bands. */
ZAVRI_EXPORT void zavri_mp_compose_two_same_frame_padding_left(T_ComposeParam* param,
                                                               uint8_t* scratch);
ZAVRI_EXPORT void zavri_mp_compose_two_same_frame_padding_right(T_ComposeParam* param,
                                                                uint8_t* scratch);
ZAVRI_EXPORT void zavri_mp_compose_two_same_frame_padding_center(T_ComposeParam* param,
                                                                 uint8_t* scratch);
ZAVRI_EXPORT void zavri_mp_compose_two_same_frame_padding_left_right(T_ComposeParam* param,
                                                                     uint8_t* scratch);

/* These functions say how many bytes one call with this record may touch; docs/memory.md derives
 * the bounds. */

/* Returns the room of each of the three frames, for an odd height half a row more than the planes.
 */
static inline size_t zavri_room_compose_frame(const T_ComposeParam* param) {
  const size_t width = param->width;
  const size_t pixels = width * param->height;
  return pixels + pixels / 2;
}

/* Returns the room of `scratch` for the four functions above. */
static inline size_t zavri_room_compose_scratch(const T_ComposeParam* param) {
  const size_t width = param->width;
  const size_t pixels = width * param->height;
  return pixels * 3 / 4;
}

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* ZAVRICUSTPRO_COMPOSE_H_ */
