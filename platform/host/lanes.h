#pragma once

// The portable scaler and Gaussian need these operations beyond simd/vec.h. They are divided into
// files likewise.
//
//   load_windows(from, offsets)     block i is the 16 bytes at from + offsets[i]
//   lookup_in_blocks(U8 v, U8 i)    in each block byte v[i[k]] at k, i 0 .. 15
//   add_samples(Wide, U8 a, int weight_a, U8 b, int weight_b)
//                                   adds weight_a * a + weight_b * b, weights 0 .. 127
//   splat_sums(int32_t x)           x in every lane
//   add_products(Sums, S16 a, int16_t weight_a, S16 b, int16_t weight_b)
//                                   adds weight_a * a + weight_b * b
//   narrow_saturated<n>(Sums a, b)  the lanes of a, then those of b, shifted right by n to within
//                                   16 bits and clamped to 0 .. 255
//
// Sums has a 32-bit lane for each 16-bit lane of a vector: `lower` those for the lanes 0 .. 3 of
// each block, `upper` those for the lanes 4 .. 7, in order.

#include "simd/vec.h"

namespace zavri::host {
namespace {

struct Sums {
  S32 lower;
  S32 upper;
};

ZAVRI_INLINE Sums splat_sums(int32_t x) { return {splat<S32>(x), splat<S32>(x)}; }

}  // namespace
}  // namespace zavri::host

#if defined(ZAVRI_X86)
#include "platform/host/lanes_x86.h"
#elif defined(ZAVRI_NEON)
#include "platform/host/lanes_neon.h"
#else
#include "platform/host/lanes_generic.h"
#endif
