/* The resize enlarges a frame, or copies it at equal size. */
#ifndef ZAVRICUSTPRO_RESIZE_H_
#define ZAVRICUSTPRO_RESIZE_H_

#include "base.h"

#ifdef __cplusplus
extern "C" {
#endif

/* This record describes one enlargement. The planes of source and destination must not overlap.
 *
 * The frame is scaled in four strips, each by itself. With q = height/4, rounded up to even, strips
 * 0..2 have q luma rows and strip 3 the rest, in source and destination alike. For heights that are
 * multiples of 8 the strips show the same parts of the picture; otherwise the rows at their borders
 * shift. Heights of 6 and 12 leave the last strip empty. Where a strip of the source is empty, that
 * of the destination keeps its luma, and its chroma becomes undefined.
 *
 * A height of 4 or 5, of source or destination, must not be used: three strips are higher than the
 * frame, the last one's 16-bit height wraps to 65534 or 65535 rows, and the call reads or writes
 * that many rows behind the plane.
 *
 * zavri_room_resize_luma and zavri_room_resize_chroma say how many bytes of the planes are touched:
 * of luma `width` bytes a row, of chroma whole rows, padding included. What the destination's
 * chroma padding holds afterwards is not defined.
 */
typedef struct tagT_ResizeParam {
  uint16_t scale_mode;   /* 0 is polynomial, 1 bilinear; others are not refused: luma stays as it
                            was, chroma becomes undefined */
  uint16_t src_width;    /* pixels, even */
  uint16_t src_height;   /* luma rows */
  uint16_t src_stride;   /* bytes of a row of luma and of chroma, even, at least src_width */
  const uint8_t* src_y;  /* the luma plane */
  const uint8_t* src_uv; /* the chroma plane */
  uint16_t dst_width;    /* the destination's sizes are at least the source's */
  uint16_t dst_height;
  uint16_t dst_stride;
  uint16_t reserved; /* is not used */
  uint8_t* dst_y;
  uint8_t* dst_uv;
} T_ResizeParam;

/* Scales the source frame into the destination, four strips in parallel on the library's pool, and
 * blocks until they are done. Any thread may call; the heavy operations of a process run one at a
 * time.
 *
 * Returns 0 when the frame is scaled; 2 for a null record or plane, a size or stride of 0 or an odd
 * width or stride; 1 when the destination's width, height or stride is below the source's. The
 * first call creates the pool: HALThreadPoolInit says what happens when threads or memory cannot be
 * had. Without memory for its scratch a strip writes to a null pointer, and the process crashes. */
ZAVRI_EXPORT uint32_t zavri_mp_resize_process(T_ResizeParam* param);

/* Scales one strip, shaped as a pool task: `strip` points to a T_ResizeParam with the strip's own
 * heights and planes, the other arguments are ignored. For the time of the call it takes memory for
 * the chroma of source and destination; when there is none, it writes to a null pointer, and the
 * process crashes. Strips of one frame may run at the same time. */
ZAVRI_EXPORT void zavri_mp_yuv_resize_inner(const void* strip, const void* unused0, void* unused1);

/* These functions say how many bytes, counted from the first of a plane, one call may read of a
 * source and write of a destination with these sizes, for every height but 4 and 5. docs/memory.md
 * derives the bounds. */

/* Returns the room of luma. */
static inline size_t zavri_room_resize_luma(uint16_t width, uint16_t height, uint16_t stride) {
  const size_t rows = height;
  return rows == 0 ? 0 : (rows - 1) * stride + width;
}

/* Returns the room of chroma, for an odd height half a row more than height / 2 rows. */
static inline size_t zavri_room_resize_chroma(uint16_t height, uint16_t stride) {
  const size_t rows = height;
  return rows * stride / 4 * 2;
}

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* ZAVRICUSTPRO_RESIZE_H_ */
