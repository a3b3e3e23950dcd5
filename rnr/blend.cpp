#include "rnr/blend.h"

#include "rnr/weights.h"
#include "simd/vec.h"

namespace zavri {
namespace {

void blend_plain(uint8_t* to, const uint8_t* sharp, const uint8_t* blurred, const uint8_t* weight,
                 size_t count) {
  for (size_t i = 0; i < count; ++i) {
    const int mixed = ((kWholeWeight - weight[i]) * sharp[i] + weight[i] * blurred[i]) >> 7;
    to[i] = weight[i] < kBlurAlone ? static_cast<uint8_t>(mixed) : blurred[i];
  }
}

// Blends a vector. What a weight above 128 makes of the mean is not used.
ZAVRI_INLINE U8 blend_vector(U8 sharp, U8 blurred, U8 weight) {
  const U8 partly = (U8)(saturating_sub(weight, splat<U8>(kBlurAlone - 1)) == 0);
  return select(partly, weighted_mean(sharp, blurred, weight), blurred);
}

void blend(uint8_t* to, const uint8_t* sharp, const uint8_t* blurred, const uint8_t* weight,
           size_t count) {
  if (!kVectorized || count < kVectorBytes) return blend_plain(to, sharp, blurred, weight, count);
  const auto blend_at = [=](size_t i) {
    store(to + i, blend_vector(load(sharp + i), load(blurred + i), load(weight + i)));
  };
  for (size_t i = 0; i + kVectorBytes <= count; i += kVectorBytes) blend_at(i);
  blend_at(count - kVectorBytes);  // repeats some of the one before it
}

}  // namespace

BlendFunction blend_kernel(ThisBuild) { return blend; }

}  // namespace zavri
