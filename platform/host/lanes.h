#pragma once

// The portable scaler and Gaussian need these operations beyond simd/vec.h. Each target has a file
// with them, and lanes_generic.h serves the others without intrinsics.
//
//   load_windows(from, offsets)     block i is the 16 bytes at from + offsets[i]
//   shuffle_blocks(U8 v, U8 i)      in each block byte v[i[k]] at k, i 0 .. 15
//   binomial_sums(from)             f[-2] + 4 * f[-1] + 6 * f[0] + 4 * f[1] + f[2] with each byte
//                                   of the vector there as f[0], as a Wide
//   narrow_high_rounded(Wide a, Wide b)
//                                   (a + b + 2^7) >> 8 as U8, a + b + 2^7 below 2^16
//   diagonal_means(U8 a, U8 b, U8 c, U8 d)
//                                   (3a + b + c + 3d) >> 3 as ad, (a + 3b + 3c + d) >> 3 as bc
//   quarter_sums(U8 p, U8 q, U8 r, U8 s)
//                                   p, q, r and s weighted with kQuarterWeights, in sum, less
//                                   128 * 128, as a Wide, below 2^15
//   splat_sums(int32_t x)           x in every lane
//   FourWeights(weights).sum(S16 a, S16 b, S16 c, S16 d)
//                                   weights[0] * a + .. + weights[3] * d as Sums
//   add_weighted_words(Sums, S16 a, int16_t weight_a, S16 b, int16_t weight_b)
//                                   adds weight_a * a + weight_b * b
//   narrow_saturated<n>(Sums a, b)  the lanes of a, then those of b, shifted right by n to within
//                                   16 bits and clamped to 0 .. 255
//   narrow_rounded<n>(Sums a, b)    likewise 128 + ((sum + 2^(n-1)) >> n), where the shifted sum is
//                                   within 16 bits
//
// Sums has a 32-bit lane for each 16-bit lane of a vector: `lower` those for the lanes 0 .. 3 of
// each block, `upper` those for the lanes 4 .. 7, in order.

#include "simd/vec.h"

namespace zavri::host {
namespace {

// At 1/4 of the way between two samples the taps of the spline weigh this much, in units of 1/128
// and exactly.
constexpr int16_t kQuarterWeights[] = {-9, 111, 29, -3};

struct Sums {
  S32 lower;
  S32 upper;
};

struct Diagonals {
  U8 ad;
  U8 bc;
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

#if !defined(ZAVRI_NEON)
#include "platform/host/lanes_derived.h"
#endif
