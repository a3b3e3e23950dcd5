#ifndef ZAVRICUSTPRO_BASE_H_
#define ZAVRICUSTPRO_BASE_H_

#include <stddef.h>
#include <stdint.h>

#define ZAVRI_EXPORT __attribute__((visibility("default")))

/* The horizontal strips, numbered from 0, into which the multi-frame denoise, the resize and the
 * chroma denoise cut a frame. Each says how many rows its strips have; the last strip takes the
 * remainder. */
enum { kZavriStrips = 4 };

#endif /* ZAVRICUSTPRO_BASE_H_ */
