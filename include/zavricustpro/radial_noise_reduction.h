/* The radial noise reduction blurs an 8-bit plane the more, the farther from its centre. */
#ifndef ZAVRICUSTPRO_RADIAL_NOISE_REDUCTION_H_
#define ZAVRICUSTPRO_RADIAL_NOISE_REDUCTION_H_

#include "base.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The plane is worked in 12 tiles: the outer ring of a 4x4 grid, whose middle stays as it is.
 *
 *      0  1  2  3
 *      4        5
 *      6        7
 *      8  9 10 11
 *
 * Up to min(width, height) / 4 - 1 pixels from the centre nothing is blurred. From there the blur
 * grows with the squared distance, until that is `radius_percent` of a corner's. Beyond, a pixel
 * moves `strength_percent`, 0..100, of the way to its blurred value, and from 95 % on the whole
 * way.
 *
 * Squared distances are counted in 32 bits. With C = (width / 2)^2 + (height / 2)^2, a corner's, F
 * the smaller of C and C * radius_percent / 100, and r = min(width, height) / 4 - 1: sides must be
 * below 65536, C * radius_percent below 2^32 and (F - r^2) * (strength_percent * 128 / 100) below
 * 2^31. Otherwise the weights are those of numbers that wrapped.
 *
 * The process has one set of tables. First call zavri_mp_RNR_init_base; after each call that
 * returned 1, zavri_mp_RNR_init_weight for all tiles; then zavri_mp_RNR_process_inner for all tiles
 * of each plane. Calls for different tiles may run at the same time, but none of them during
 * zavri_mp_RNR_init_base. Tile numbers are 0..11; before the first call every tile is empty. */

/* Lays down the geometry: pixels, rows, bytes from row to row, and the two percentages. Returns 1
 * when the tables were built anew. Returns 0 and keeps all of them when nothing but the strength
 * differs from the call before: a new strength alone has no effect.
 *
 * A rebuild takes four bytes of memory for each pixel of the tiles, which the library keeps until
 * the next rebuild. When there is no memory the call returns 1 all the same, and the next call for
 * a tile without buffers crashes the process. */
ZAVRI_EXPORT uint32_t zavri_mp_RNR_init_base(uint32_t width, uint32_t height, uint32_t stride,
                                             uint32_t radius_percent, int32_t strength_percent);

/* Fills the weights of one tile; `tile_number` points to its uint32_t number. Does nothing for
 * null. */
ZAVRI_EXPORT void zavri_mp_RNR_init_weight(const void* tile_number);

/* Blurs one tile of the plane in place. Does nothing for null. The Gaussian sees each tile alone
 * and repeats its edges where it needs samples beyond them. */
ZAVRI_EXPORT void zavri_mp_RNR_process_inner(const void* tile_number, void* plane);

/* Does nothing and returns 0. */
ZAVRI_EXPORT uint32_t zavri_mp_RNR_process(void);

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* ZAVRICUSTPRO_RADIAL_NOISE_REDUCTION_H_ */
