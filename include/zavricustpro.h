/* libmmcamera_zavricustpro: post-processing of 8-bit YUV 4:2:0 semi-planar camera frames.
 *
 * C11 and C++17. A frame is a luma plane (one byte per pixel) and a chroma plane of interleaved
 * (U, V) byte pairs, one pair per 2x2 block of luma. The caller owns every frame and record; the
 * library writes only where a function says so. No exception crosses this interface.
 */
#ifndef ZAVRICUSTPRO_H_
#define ZAVRICUSTPRO_H_

#include <stddef.h>
#include <stdint.h>

#define ZAVRI_EXPORT __attribute__((visibility("default")))

#ifdef __cplusplus
#include <pthread.h>

#include <atomic>
#include <deque>
#include <vector>

extern "C" {
#endif

/* Multi-frame denoise. */

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
 * Room. With q = height/8, W4 = width/4 and n = height/2 - 3*q, the call touches
 *   chroma  up to byte (height/2 - 1)*uv_stride + width, rounded up to even;
 *   luma    up to the end of row 3*(height/4) + 2*n - 1, which for height mod 8 >= 4 lies two or
 *           three rows past the plane;
 *   smoothing (switch_d) reads and writes the row padding as well, that is (height/2)*uv_stride
 *           bytes of chroma, one more where uv_stride is odd;
 *   edges (switch_b, or switch_c, with gain below 16) of 2 or 3 frames: 2*W4*n bytes further in
 * both planes, because their sections move 2*W4 bytes from row to row; of 4 frames: 2 bytes. In the
 * other frames only what lies within these bounds is read. Where the luma bound runs into the
 * chroma plane, the last strip's luma rows overwrite chroma that another strip works on at the same
 * time: leave the room between the planes when the result must not depend on timing.
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

/* Resize. */

/* One enlargement of a frame. The planes of source and destination must not overlap.
 *
 * The frame is scaled in four strips, each by itself. With q = height/4, rounded up to even, strips
 * 0..2 have q luma rows and strip 3 the rest, in source and destination alike. For heights that are
 * multiples of 8 the strips show the same parts of the picture; otherwise the rows at their borders
 * shift. Heights of 6 and 12 leave the last strip empty. Where a strip of the source is empty, that
 * of the destination keeps its luma, and its chroma becomes undefined.
 *
 * A height of 4 or 5, of source or destination, must not be used: three strips are higher than the
 * frame, the last one's 16-bit height wraps to 65534 or 65535 rows, and the call runs that far
 * behind the planes.
 *
 * Room. Luma: `height` rows of `stride` bytes, of which `width` are read or written. Chroma: whole
 * rows, padding included, 2 * (stride * height / 4) bytes of either plane. For an odd height that
 * is half a row more than height/2 rows. What the destination's chroma padding holds afterwards is
 * not defined.
 */
typedef struct tagT_ResizeParam {
  uint16_t scale_mode;   /* 0 polynomial, 1 bilinear; others are not refused: luma stays as it was,
                            chroma becomes undefined */
  uint16_t src_width;    /* pixels, even */
  uint16_t src_height;   /* luma rows */
  uint16_t src_stride;   /* bytes, of luma and of chroma, even, at least src_width */
  const uint8_t* src_y;  /* luma */
  const uint8_t* src_uv; /* chroma */
  uint16_t dst_width;    /* the same of the destination, each at least the source's */
  uint16_t dst_height;
  uint16_t dst_stride;
  uint16_t reserved; /* not used */
  uint8_t* dst_y;
  uint8_t* dst_uv;
} T_ResizeParam;

/* Scales the source frame into the destination, four strips in parallel on the library's pool, and
 * blocks until they are done. Any thread may call; the heavy operations of a process run one at a
 * time. Returns 0; 2 for a null record or plane, a size or stride of 0 or an odd width or stride;
 * 1 when the destination's width, height or stride is below the source's. */
ZAVRI_EXPORT uint32_t zavri_mp_resize_process(T_ResizeParam* param);

/* One strip of it, shaped as a pool task: `strip` points to a T_ResizeParam with the strip's own
 * heights and planes, the other arguments are ignored. Needs memory for the chroma of both strips,
 * which must be had. Strips of one frame may run at the same time. */
ZAVRI_EXPORT void zavri_mp_yuv_resize_inner(const void* strip, const void* unused0, void* unused1);

/* Chroma denoise. */

/* One chroma denoise, read-only for the library. A chroma plane is filtered in place in four strips
 * of q = height/4 rows, the last of which takes the rest; the caller runs them. Only every second
 * pair of every second row, counted from the strip's first, is filtered: along its row and then
 * down its column, each with a window of K such pairs. What lies between is interpolated.
 *
 * Room. Neither the plane's size nor its stride is checked. With r = (K - 1)/2, M = q/2 and
 * L = (height - 3*q)/2, width is even and at least 60, 96, 112 or 128 for K = 7, 11, 15 or 19 (40
 * with the fixed tolerance), L at least 2*r, and stride at least width and below 32768. The fixed
 * tolerance then stays within the width bytes of the plane's rows, and so do all from q = 6*r on.
 * Below that, strip 0 reads from 2*(2*r - M) rows before the plane if M < 2*r, and strip 3 reads up
 * to row 3*q + 2*(3*r - 1).
 *
 * Strips 0 to 2 also read the 2*r filtered rows after their own, which lie in the next strip, write
 * the first r of them and fill row 0 of the next strip. So the strips may run at the same time, but
 * what these rows become then depends on timing; one after the other in ascending order, the result
 * is always the same. */
typedef struct tagT_UVDenoiseParam {
  uint32_t reserved; /* not read */
  uint32_t width;    /* bytes of a chroma row that hold pairs: the image's width in pixels */
  uint32_t height;   /* chroma rows */
  uint32_t stride;   /* bytes from row to row */
  uint8_t* uv_plane;
  int8_t kernel_size; /* K: 7, 11, 15 or 19; any other value is taken as 11 */
  int8_t threshold;   /* 0: nothing is done. A neighbour whose U and V both differ from the centre's
                         by less than this counts; below 0 none does */
  int8_t weight_table[127]; /* by the larger of the two differences: what a neighbour counts, the
                               centre counting 64. Only [0, threshold) is read and need exist.
                               Weights below 0 must not let a sum of weights become 0. Fast are
                               only tables without such weights and with n * max(d * w[d]) +
                               (64 + n * max(w)) / 2 <= 32767, where n is 10, 15, 15 or 18 for
                               K = 7, 11, 15 or 19; others take up to ten times as long */
} T_UVDenoiseParam;

/* One strip, shaped as a pool task: `strip` points to the uint32_t strip number 0..3, `param` to a
 * T_UVDenoiseParam, `unused` is ignored. Does nothing when either is null. */
ZAVRI_EXPORT void zavri_mp_UV_denoise_inner(const void* strip, const void* param, void* unused);

/* The same for a fixed K, whatever kernel_size says. A threshold of 0 only interpolates. */
ZAVRI_EXPORT void zavri_mp_single_UV_denoise_new_inner_7(const void* strip, const void* param,
                                                         void* unused);
ZAVRI_EXPORT void zavri_mp_single_UV_denoise_new_inner_11(const void* strip, const void* param,
                                                          void* unused);
ZAVRI_EXPORT void zavri_mp_single_UV_denoise_new_inner_15(const void* strip, const void* param,
                                                          void* unused);
ZAVRI_EXPORT void zavri_mp_single_UV_denoise_new_inner_19(const void* strip, const void* param,
                                                          void* unused);

/* The older form with K = 11: plain means of the neighbours whose U is less than 20 away and whose
 * V is less than 20 below the centre's (however far above). Reads neither kernel_size nor threshold
 * nor weight_table. */
ZAVRI_EXPORT void zavri_mp_single_UV_denoise_inner_11(const void* strip, const void* param,
                                                      void* unused);

/* Does nothing and returns 0. */
ZAVRI_EXPORT uint32_t zavri_mp_single_UV_denoise(T_UVDenoiseParam* param);

/* Radial noise reduction. */

/* Blurs an 8-bit plane the more, the farther from its centre, in 12 tiles: the outer ring of a 4x4
 * grid, whose middle stays as it is.
 *
 *      0  1  2  3
 *      4        5
 *      6        7
 *      8  9 10 11
 *
 * Up to min(width, height) / 4 - 1 pixels from the centre nothing is blurred. From there the blur
 * grows with the squared distance until that is `radius_percent` of a corner's; beyond, pixels are
 * `strength_percent` of the way to their blurred value, and wholly there from 95 % on.
 *
 * Squared distances are counted in 32 bits. With C = (width / 2)^2 + (height / 2)^2, a corner's, F
 * the smaller of C and C * radius_percent / 100, and r = min(width, height) / 4 - 1: sides must be
 * below 65536, C * radius_percent below 2^32 and (F - r^2) * (strength_percent * 128 / 100) below
 * 2^31. Otherwise the weights are those of numbers that wrapped.
 *
 * The tables are the process's. Use: zavri_mp_RNR_init_base; after each call that returned 1,
 * zavri_mp_RNR_init_weight for all tiles; then zavri_mp_RNR_process_inner for all tiles of each
 * plane. Calls for different tiles may run at the same time, none of them during the first. Tile
 * numbers are 0..11; before the first call every tile is empty. */

/* Lays down the geometry: pixels, rows, bytes from row to row, and the two percentages. Returns 1
 * when the tables were built anew; 0, and keeps all of them, when nothing but the strength differs
 * from the call before: a new strength alone has no effect. A rebuild needs four bytes of memory
 * for each pixel of the tiles, which must be had; the library keeps them until the next rebuild. */
ZAVRI_EXPORT uint32_t zavri_mp_RNR_init_base(uint32_t width, uint32_t height, uint32_t stride,
                                             uint32_t radius_percent, int32_t strength_percent);

/* Fills the weights of one tile; `tile_number` points to its uint32_t number. Nothing for null. */
ZAVRI_EXPORT void zavri_mp_RNR_init_weight(const void* tile_number);

/* Blurs one tile of the plane in place. Nothing for null. The Gaussian sees each tile alone and
 * takes what lies beyond its edges from them. */
ZAVRI_EXPORT void zavri_mp_RNR_process_inner(const void* tile_number, void* plane);

/* Does nothing and returns 0. */
ZAVRI_EXPORT uint32_t zavri_mp_RNR_process(void);

/* Composition of two frames. */

/* Two frames of one size, each reduced to half width and half height, side by side in one frame of
 * that size. A frame has no row padding: `width` * `height` bytes of luma, then `height` / 2 rows
 * of `width` bytes of chroma.
 *
 *     +---------------------------+
 *     |          black            |  height / 4
 *     +------+---------+----------+
 *     | band | frame 1 | frame 2  |  height / 2    mode 0; `mode` and `padding` say where the
 *     +------+---------+----------+                bands stand and how wide they are
 *     |          black            |  height / 4
 *     +---------------------------+
 *
 * The rightmost `padding` columns of the sources are not used. Exact for a `height` that is a
 * multiple of 8, a `width` - `padding` that is a multiple of 4 and, in mode 3, an even `padding`;
 * otherwise rows of the picture slide to the left, and single bytes are 0 or, where `width` *
 * `height` is no multiple of 8, stay as they were.
 */
typedef struct tagT_ComposeParam {
  uint16_t width;    /* pixels */
  uint16_t height;   /* rows; width * height is below 2^32 / 11 */
  uint32_t mode;     /* band at the left 0, right 1, centre 2, half at either side 3; above: none
                        of the frames, and what is not black is unspecified */
  uint16_t padding;  /* columns of all bands together, 0..width */
  uint16_t reserved; /* not read */
  const uint8_t* src_frame1;
  const uint8_t* src_frame2;
  uint8_t* dst_frame; /* may be one of the sources */
} T_ComposeParam;

/* Writes dst_frame. Needs a scratch frame of 3/4 * width * height bytes for the time of the call;
 * when there is no memory for it, dst_frame stays as it was and the result is still 0. Any number
 * of threads may compose different records. Returns 0, or 2 for a null pointer or a size of 0. */
ZAVRI_EXPORT uint32_t zavri_mp_compose_two_same_frame(T_ComposeParam* param);

/* The middle part of it for modes 0..3: both reduced frames and the bands, written to `scratch`, a
 * frame of `width` by `height` / 2 without row padding: width * height / 2 bytes of luma, half as
 * many of chroma. `mode` and `dst_frame` are not read. A height below 4 writes nothing, a `width` -
 * `padding` below 4 only the bands. */
ZAVRI_EXPORT void zavri_mp_compose_two_same_frame_padding_left(T_ComposeParam* param,
                                                               uint8_t* scratch);
ZAVRI_EXPORT void zavri_mp_compose_two_same_frame_padding_right(T_ComposeParam* param,
                                                                uint8_t* scratch);
ZAVRI_EXPORT void zavri_mp_compose_two_same_frame_padding_center(T_ComposeParam* param,
                                                                 uint8_t* scratch);
ZAVRI_EXPORT void zavri_mp_compose_two_same_frame_padding_left_right(T_ComposeParam* param,
                                                                     uint8_t* scratch);

/* Auto-shoot: flags, and measures of a rectangle of a luma plane. */

/* Columns [x, x + width) and rows [y, y + height) of a luma plane. The measures take a rectangle
 * without negative fields that leaves at least one column to its right and one row below it. */
typedef struct tagT_OptRect {
  int32_t x;
  int32_t y;
  int32_t width;
  int32_t height;
} T_OptRect;

/* The focus rectangle that the library keeps, all zero at first. Neither it nor the flags below are
 * locked: set them while nobody else sets, gets or measures. */
extern ZAVRI_EXPORT T_OptRect tOptRect;

/* Copies it in and out, whatever its fields. Nothing happens when `rect` is null. */
ZAVRI_EXPORT void zavri_auto_shoot_opt_set_FV_rect(const T_OptRect* rect);
ZAVRI_EXPORT void zavri_auto_shoot_opt_get_FV_rect(T_OptRect* rect);

/* Two values that the library keeps for the host and never looks at; 0 at first. */
ZAVRI_EXPORT void zavri_auto_shoot_opt_set_lock_status(uint32_t status);
ZAVRI_EXPORT uint32_t zavri_auto_shoot_opt_get_lock_status(void);
ZAVRI_EXPORT void zavri_auto_shoot_opt_set_auto_shdr_status(uint8_t status);
ZAVRI_EXPORT uint8_t zavri_auto_shoot_opt_get_auto_shdr_status(void);

/* Kept for hosts that link them: the first returns 0, the second does nothing. */
ZAVRI_EXPORT int32_t zavri_auto_shoot_opt_get_status(void);
ZAVRI_EXPORT void zavri_auto_shoot_opt_set_status(uint32_t status);

/* The four measures read a plane of `image_height` rows of `image_width` bytes, without padding,
 * and write nothing. They run on the calling thread; any number of threads may measure at once.
 * All return a sum modulo 2^32, and 0 when `luma` is null or the rectangle is refused, which a flat
 * or black rectangle gives as well. `rect` must not be null.
 *
 * Sharpness: the absolute differences of vertical neighbours in the rectangle, plus those of
 * horizontal neighbours in groups of four rows. Each group lies one column further left than the
 * one above, the first in the rectangle; rows that fill no group take no part in the second sum.
 * From an image_width of about 16384 on (4 * image_width - width above 65535, which is cut to 16
 * bits) groups start elsewhere in the plane, and of more than 65535 groups only the count modulo
 * 65536 is taken. */
ZAVRI_EXPORT uint32_t zavri_auto_shoot_opt_get_FV_value(const uint8_t* luma, const T_OptRect* rect,
                                                        uint32_t image_width,
                                                        uint32_t image_height);

/* The vertical part of it, over tOptRect. */
ZAVRI_EXPORT uint32_t zavri_auto_shoot_opt_get_FV_value_derivation(const uint8_t* luma,
                                                                   uint32_t image_width,
                                                                   uint32_t image_height);

/* Contrast: the absolute deviations of tOptRect's samples from the truncated mean of the rows that
 * lie one below its own. The sum behind the mean, too, counts modulo 2^32. */
ZAVRI_EXPORT uint32_t zavri_auto_shoot_opt_get_FV_value_average(const uint8_t* luma,
                                                                uint32_t image_width,
                                                                uint32_t image_height);

/* Brightness: the samples of all rows but the last. */
ZAVRI_EXPORT uint32_t zavri_auto_shoot_opt_get_bright(const uint8_t* luma, const T_OptRect* rect,
                                                      uint32_t image_width, uint32_t image_height);

/* Debug dumps: raw bytes in files under /data/misc/camera, and back.
 *
 * All run on the calling thread without a lock. Folders are never created. Files are created with
 * mode 0777 and never truncated. What a read or write leaves undone is not reported, and nor is a
 * file that cannot be opened. */

/* Writes `len1` bytes of `buf1`, then `len2` bytes of `buf2`, to zvcdumpyuv/<name>, over the first
 * bytes of a file that exists. The path is cut to 63 characters. Returns 0, or 2 when a pointer is
 * null. */
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

/* Reads them back. Returns 0; 1 when there is no such file; 2 as above. A file that is shorter
 * leaves the rest of the buffers as it was. */
ZAVRI_EXPORT int32_t zavri_debug_load_fixed_yuv(uint8_t* buf1, uint32_t len1, uint8_t* buf2,
                                                uint32_t len2);

/* One plane of a frame that is dumped: `meta_len` bytes, then `height` rows.
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
  int32_t height;    /* rows; none when not above 0 */
  uint32_t meta_len; /* bytes in front of the rows */
} T_DumpPlaneInfo;

/* A frame, and the name of its file, with the width and height of plane 0:
 *
 *   named_by_size == 0  zvcfixedyuvprefix_<time>_<width>x<height>_<frame_idx>_suffix.yuv
 *   otherwise           zvcfixedyuvprefix_<width>x<height>_<frame_idx>_suffix.yuv
 *
 * <time> is seconds since 1970, taken when frame_idx is 0 or the low byte of frame_count is 1 or 2
 * and kept for the calls after: the frames of a burst share it. */
typedef struct tagT_DumpFrameInfo {
  uint32_t num_planes;       /* planes in use; above 8 counts as 8 */
  T_DumpPlaneInfo planes[8]; /* the others are not read, but plane 0 names the file */
  uint32_t reserved;         /* not read */
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

/* Thread pool. */

/* One run of a fan-out's task function: fn(pIn0, pIn1, pOut). Mind the order of the fields. */
typedef struct tagT_ThreadPoolTaskInput {
  const void* pIn0;
  void* pOut;
  const void* pIn1;
} T_ThreadPoolTaskInput;

typedef void (*ThreadPoolTaskFunc)(const void*, const void*, void*);

#ifdef __cplusplus
class ThreadPool;
#else
typedef struct ThreadPool ThreadPool;
#endif

/* The process-wide pool, null before its creation, and 1 once all its threads run. Written only by
 * the two functions below. */
extern ZAVRI_EXPORT ThreadPool* g_threadpool;
extern ZAVRI_EXPORT int32_t g_hal_threadpool_init;

/* Creates the process-wide pool of four threads unless it exists; the heavy operations call it
 * themselves. Returns 0, or -1 when a thread could not be created; the half-started pool is then
 * left behind and the next call builds a fresh one. One thread at a time may call these two, and
 * none while an operation runs. */
ZAVRI_EXPORT int HALThreadPoolInit(void);

/* Stops the pool, joins its threads and frees it; nothing when there is none. Returns 0. */
ZAVRI_EXPORT int HALThreadPoolDestroy(void);

/* Thread entry: runs `pool`'s execute_thread, which does not return. */
ZAVRI_EXPORT void* start_thread(void* pool);

/* Task body of a fan-out: runs the ThreadPoolTaskInfo `info` and counts it as finished. */
ZAVRI_EXPORT void WorkerThreadBase(void* info);

#ifdef __cplusplus
} /* extern "C" */

/* The classes contain containers of the C++ standard library: reach into them only from code built
 * with the same one. */

/* A function and its argument. The pool never frees a task: who queues it owns it. */
class ZAVRI_EXPORT Task {
 public:
  Task(void (*fn)(void*), void* arg);
  ~Task();
  void run();
  void operator()();

  void (*fn)(void*);
  void* arg;
};

/* A mutex with a flag that is set between lock and unlock; waits for a condition leave it alone. */
struct TaskLock {
  TaskLock();
  ~TaskLock();
  void lock();
  void unlock();

  pthread_mutex_t mutex;
  std::atomic<uint8_t> locked;
};

/* Threads fed from one FIFO of tasks. */
class ZAVRI_EXPORT ThreadPool {
 public:
  ThreadPool(); /* 4 threads */
  explicit ThreadPool(int pool_size);
  ThreadPool(const ThreadPool&) = delete;
  ThreadPool& operator=(const ThreadPool&) = delete;
  ~ThreadPool(); /* stops and joins the threads if that has not been done */

  int initialize_threadpool(); /* starts the threads: 0, or -1 at the first that fails */
  int destroy_threadpool();    /* stops and joins; tasks still queued are never run. Returns 0 */
  int add_task(Task* task);    /* any thread; returns 0 */
  void execute_thread();       /* body of every pool thread; does not return */

  int32_t pool_size;
  TaskLock task_lock; /* guards task_queue and pool_state */
  pthread_cond_t task_cond;
  std::vector<pthread_t> threads;
  std::deque<Task*> task_queue;
  int32_t pool_state; /* 0 running, 1 stopped */
};

/* Runs one function over `count` inputs on a pool and waits for all of them. One Work per object.
 */
class ZAVRI_EXPORT ThreadPoolWorker {
 public:
  ThreadPoolWorker(ThreadPool* pool, int count, ThreadPoolTaskFunc fn,
                   T_ThreadPoolTaskInput* inputs); /* inputs[0, count) must outlive Work */
  ThreadPoolWorker(const ThreadPoolWorker&) = delete;
  ThreadPoolWorker& operator=(const ThreadPoolWorker&) = delete;
  ~ThreadPoolWorker();

  int Work(); /* returns 0 after the last run has finished; runs must write disjoint memory */
  void OneTaskFinish();

  pthread_mutex_t worker_lock; /* guards remaining */
  pthread_cond_t worker_cond;
  int32_t task_count;
  int32_t remaining;
  ThreadPoolTaskFunc task_fn;
  T_ThreadPoolTaskInput* task_inputs;
  ThreadPool* pool;
};

/* What a fan-out's task needs to run. */
struct ZAVRI_EXPORT ThreadPoolTaskInfo {
  ThreadPoolTaskInfo(ThreadPoolWorker* worker, ThreadPoolTaskFunc task_fn,
                     T_ThreadPoolTaskInput* task_input);

  ThreadPoolWorker* worker;
  ThreadPoolTaskFunc task_fn;
  T_ThreadPoolTaskInput* task_input;
};
#endif /* __cplusplus */

#endif /* ZAVRICUSTPRO_H_ */
