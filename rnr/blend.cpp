#include "rnr/blend.h"

#include "rnr/weights.h"

#ifndef ZAVRI_BUILD_PLAIN
#include "simd/vec.h"
#endif

namespace zavri {
namespace {

void blend_plain(uint8_t* to, const uint8_t* sharp, const uint8_t* blurred, const uint8_t* weight,
                 size_t count) {
  for (size_t i = 0; i < count; ++i) {
    const int mixed = ((kWholeWeight - weight[i]) * sharp[i] + weight[i] * blurred[i]) >> 7;
    to[i] = weight[i] < kBlurAlone ? static_cast<uint8_t>(mixed) : blurred[i];
  }
}

#ifdef ZAVRI_BUILD_PLAIN

void blend(uint8_t* to, const uint8_t* sharp, const uint8_t* blurred, const uint8_t* weight,
           size_t count) {
  blend_plain(to, sharp, blurred, weight, count);
}

#else

// What the blur adds to `sharp`: weight * (blurred - sharp) >> 7. With a weight below kBlurAlone
// the product is within +-120 * 255, and so in 16 bits.
ZAVRI_INLINE V16 difference(V16 sharp, V16 blurred, V16 weight) {
  return (V16)((S16)(weight * (blurred - sharp)) >> 7);
}

ZAVRI_INLINE V8 mix(V8 sharp, V8 blurred, V8 weight) {
  const V16 low = splat16(0xff);
  const V16 even = difference((V16)sharp & low, (V16)blurred & low, (V16)weight & low);
  const V16 odd = difference((V16)sharp >> 8, (V16)blurred >> 8, (V16)weight >> 8);
  const V8 mixed = sharp + (V8)((even & low) | odd << 8);
  const V8 partly = (V8)(above(weight, splat8(kBlurAlone - 1)) == 0);
  return select(partly, mixed, blurred);
}

void blend(uint8_t* to, const uint8_t* sharp, const uint8_t* blurred, const uint8_t* weight,
           size_t count) {
  if (count < kVectorBytes) return blend_plain(to, sharp, blurred, weight, count);
  const auto mix_at = [=](size_t i) {
    store(to + i, mix(load(sharp + i), load(blurred + i), load(weight + i)));
  };
  for (size_t i = 0; i + kVectorBytes <= count; i += kVectorBytes) mix_at(i);
  mix_at(count - kVectorBytes);  // repeats some of the one before it
}

#endif

}  // namespace

BlendFunction blend_kernel(ThisBuild) { return blend; }

}  // namespace zavri
