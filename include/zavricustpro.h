/* libmmcamera_zavricustpro post-processes 8-bit YUV 4:2:0 semi-planar camera frames.
 *
 * The header serves C11 and C++17. A frame is a luma plane of one byte per pixel and a chroma plane
 * of interleaved (U, V) byte pairs, one pair per 2x2 block of luma. The caller owns every frame and
 * record; the library writes only where a function says so.
 *
 * No exception crosses this interface. Where there is no memory for the thread pool or for the
 * tasks of a call the process is aborted; what other functions do without memory stands with them.
 */
#ifndef ZAVRICUSTPRO_H_
#define ZAVRICUSTPRO_H_

#include "zavricustpro/auto_shoot.h"
#include "zavricustpro/base.h"
#include "zavricustpro/chroma_denoise.h"
#include "zavricustpro/compose.h"
#include "zavricustpro/debug_dump.h"
#include "zavricustpro/denoise.h"
#include "zavricustpro/radial_noise_reduction.h"
#include "zavricustpro/resize.h"
#include "zavricustpro/thread_pool.h"

#endif /* ZAVRICUSTPRO_H_ */
