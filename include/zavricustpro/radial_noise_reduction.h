#ifndef ZAVRICUSTPRO_RADIAL_NOISE_REDUCTION_H_
#define ZAVRICUSTPRO_RADIAL_NOISE_REDUCTION_H_

#include "base.h"

#ifdef __cplusplus
extern "C" {
#endif

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

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* ZAVRICUSTPRO_RADIAL_NOISE_REDUCTION_H_ */
