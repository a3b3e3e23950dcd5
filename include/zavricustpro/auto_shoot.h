#ifndef ZAVRICUSTPRO_AUTO_SHOOT_H_
#define ZAVRICUSTPRO_AUTO_SHOOT_H_

#include "base.h"

#ifdef __cplusplus
extern "C" {
#endif

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

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* ZAVRICUSTPRO_AUTO_SHOOT_H_ */
