/* The auto-shoot aid keeps two flags and a rectangle, and measures sharpness and brightness. */
#ifndef ZAVRICUSTPRO_AUTO_SHOOT_H_
#define ZAVRICUSTPRO_AUTO_SHOOT_H_

#include "base.h"

#ifdef __cplusplus
extern "C" {
#endif

/* A rectangle has the columns [x, x + width) and the rows [y, y + height) of a luma plane. The
 * measures refuse one with a negative field, or one that does not leave at least one column to its
 * right and one row below it. */
typedef struct tagT_OptRect {
  int32_t x;
  int32_t y;
  int32_t width;
  int32_t height;
} T_OptRect;

/* This is the focus rectangle that the library keeps, all zero at first. Neither it nor the flags
 * below are locked: set them while nobody else sets, gets or measures. */
extern ZAVRI_EXPORT T_OptRect tOptRect;

/* These copy tOptRect in and out, whatever its fields. Nothing happens when `rect` is null. */
ZAVRI_EXPORT void zavri_auto_shoot_opt_set_FV_rect(const T_OptRect* rect);
ZAVRI_EXPORT void zavri_auto_shoot_opt_get_FV_rect(T_OptRect* rect);

/* The library keeps these two values for the host and never looks at them; they are 0 at first. */
ZAVRI_EXPORT void zavri_auto_shoot_opt_set_lock_status(uint32_t status);
ZAVRI_EXPORT uint32_t zavri_auto_shoot_opt_get_lock_status(void);
ZAVRI_EXPORT void zavri_auto_shoot_opt_set_auto_shdr_status(uint8_t status);
ZAVRI_EXPORT uint8_t zavri_auto_shoot_opt_get_auto_shdr_status(void);

/* These two exist for hosts that link them: the first returns 0, the second does nothing. */
ZAVRI_EXPORT int32_t zavri_auto_shoot_opt_get_status(void);
ZAVRI_EXPORT void zavri_auto_shoot_opt_set_status(uint32_t status);

/* The four measures read a plane of `image_height` rows of `image_width` bytes, without padding,
 * and write nothing. They run on the calling thread; any number of threads may measure at once.
 * All return a sum modulo 2^32, and 0 when `luma` is null or the rectangle is refused, which a flat
 * or black rectangle gives as well. `rect` must not be null.
 *
 * This one measures sharpness: it adds up the absolute differences of vertical neighbours in the
 * rectangle, and those of horizontal neighbours in groups of four rows. The first group lies in the
 * rectangle, each further one a column further left; rows that fill no group take no part in the
 * second sum. A rectangle of 10 rows at column 5 has two groups, rows 0..3 from column 5 on and
 * rows 4..7 from column 4 on.
 *
 * From an image_width of about 16384 on (4 * image_width - width above 65535, which is cut to 16
 * bits) groups start elsewhere in the plane, and of more than 65535 groups only the count modulo
 * 65536 is taken. */
ZAVRI_EXPORT uint32_t zavri_auto_shoot_opt_get_FV_value(const uint8_t* luma, const T_OptRect* rect,
                                                        uint32_t image_width,
                                                        uint32_t image_height);

/* Adds up the differences of vertical neighbours alone, in tOptRect. */
ZAVRI_EXPORT uint32_t zavri_auto_shoot_opt_get_FV_value_derivation(const uint8_t* luma,
                                                                   uint32_t image_width,
                                                                   uint32_t image_height);

/* Measures contrast: adds up the absolute deviations of tOptRect's samples from a truncated mean.
 * The mean is that of the rows one below the rectangle's own; its sum counts modulo 2^32, too. */
ZAVRI_EXPORT uint32_t zavri_auto_shoot_opt_get_FV_value_average(const uint8_t* luma,
                                                                uint32_t image_width,
                                                                uint32_t image_height);

/* Measures brightness: adds up the samples of all rows of the rectangle but the last. */
ZAVRI_EXPORT uint32_t zavri_auto_shoot_opt_get_bright(const uint8_t* luma, const T_OptRect* rect,
                                                      uint32_t image_width, uint32_t image_height);

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* ZAVRICUSTPRO_AUTO_SHOOT_H_ */
