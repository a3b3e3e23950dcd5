#ifndef ZAVRICUSTPRO_BASE_H_
#define ZAVRICUSTPRO_BASE_H_

#include <stddef.h>
#include <stdint.h>

/* The version of this header; no function tells that of the library. */
#define ZAVRI_VERSION "0.1.0"

#define ZAVRI_EXPORT __attribute__((visibility("default")))

/* The multi-frame denoise, the resize and the chroma denoise cut a frame into this many horizontal
 * strips, numbered from 0 at the top. The last strip takes the rows that a division leaves over. */
enum { kZavriStrips = 4, kZavriLastStrip = kZavriStrips - 1 };

#endif /* ZAVRICUSTPRO_BASE_H_ */
