/* Debug dumps write raw bytes to files under /data/misc/camera, and read them back.
 *
 * All run on the calling thread without a lock. Folders are never created. Files are created with
 * mode 0777 and never truncated. What a read or write leaves undone is not reported, and nor is a
 * file that cannot be opened. */
#ifndef ZAVRICUSTPRO_DEBUG_DUMP_H_
#define ZAVRICUSTPRO_DEBUG_DUMP_H_

#include "base.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Writes `len1` bytes of `buf1`, then `len2` bytes of `buf2`, to zvcdumpyuv/<name>. A file that
 * exists keeps what lies behind these bytes. The path is cut to 63 characters. Returns 0, or 2 when
 * a pointer is null. */
ZAVRI_EXPORT int32_t zavri_debug_dump_yuv_simple1(const uint8_t* buf1, uint32_t len1,
                                                  const uint8_t* buf2, uint32_t len2,
                                                  const char* name);

/* Writes `y_len` bytes of luma and then the chroma, interleaved U first, to the same place. Returns
 * 0; 2 when a pointer is null or `u_len` is not `v_len`; 3 when there is no memory for the 2 *
 * u_len bytes of chroma, or that is negative or above INT32_MAX. */
ZAVRI_EXPORT int32_t zavri_debug_dump_yuv_simple2(const uint8_t* y, uint32_t y_len,
                                                  const uint8_t* u, int32_t u_len, const uint8_t* v,
                                                  int32_t v_len, const char* name);

/* Writes two buffers to zvcfixedyuv/0.yuv unless that file exists. Returns 0, or 2 when a pointer
 * is null or a length 0. */
ZAVRI_EXPORT int32_t zavri_debug_dump_fixed_yuv(const uint8_t* buf1, uint32_t len1,
                                                const uint8_t* buf2, uint32_t len2);

/* Reads zvcfixedyuv/0.yuv back into two buffers. Returns 0; 1 when there is no such file; 2 when a
 * pointer is null or a length 0. A file that is shorter leaves the rest of the buffers as it was.
 */
ZAVRI_EXPORT int32_t zavri_debug_load_fixed_yuv(uint8_t* buf1, uint32_t len1, uint8_t* buf2,
                                                uint32_t len2);

/* This record describes one plane of a frame that is dumped: `meta_len` bytes, then `height` rows.
 *
 *   position  -> meta_len bytes
 *   + meta_len -> width bytes of a row, the next one `stride` bytes further, ..
 *
 * Plane 0 stands at base + offset. Plane i stands at base + offset + the `len` of plane i - 1
 * alone, so that `offset` must make up for the planes before that one. Positions are unsigned and
 * 32 bits wide. */
typedef struct tagT_DumpPlaneInfo {
  uint32_t len;      /* bytes; only places the next plane */
  uint32_t offset;   /* bytes */
  uint32_t stride;   /* bytes from row to row */
  uint32_t width;    /* bytes of a row that are dumped */
  int32_t height;    /* rows; below 0 there are none */
  uint32_t meta_len; /* bytes in front of the rows */
} T_DumpPlaneInfo;

/* This record describes a frame that is dumped and names its file, with the width and height of
 * plane 0:
 *
 *   named_by_size == 0  zvcfixedyuvprefix_<time>_<width>x<height>_<frame_idx>_suffix.yuv
 *   otherwise           zvcfixedyuvprefix_<width>x<height>_<frame_idx>_suffix.yuv
 *
 * <time> is seconds since 1970, taken when frame_idx is 0 or the low byte of frame_count is 1 or 2
 * and kept for the calls after: the frames of a burst share it. */
typedef struct tagT_DumpFrameInfo {
  uint32_t num_planes;       /* planes in use; above 8 counts as 8 */
  T_DumpPlaneInfo planes[8]; /* only those in use are read, but plane 0 always names the file */
  uint32_t reserved;         /* is not read */
  uint32_t frame_idx;
  uint32_t named_by_size;
  uint32_t frame_count;
} T_DumpFrameInfo;

/* Writes the frame at `base` unless its file exists. Returns 0 always; nothing is checked, `base`
 * least of all. One thread at a time may dump, or bursts mix their times. */
ZAVRI_EXPORT int32_t dumpYuv(const uint8_t* base, T_DumpFrameInfo info);

/* Reads a frame that is named by its size into the frame at `base`; the bytes between rows stay as
 * they are. Does nothing for a frame that is named by its time. Returns 0 always. */
ZAVRI_EXPORT int32_t loadYuv(uint8_t* base, T_DumpFrameInfo info);

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* ZAVRICUSTPRO_DEBUG_DUMP_H_ */
