#include "rnr/blend.h"

#include "rnr/weights.h"

#ifndef ZAVRI_BUILD_PLAIN
#include "simd/wide.h"
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

ZAVRI_INLINE V8 mix(V8 sharp, V8 blurred, V8 weight) {
  // What the blur adds. With a weight below kBlurAlone the product is within +-120 * 255, and so in
  // 16 bits.
  Wide added = weighted_difference(sharp, blurred, weight);
  for (V16& part : added.part) part = (V16)((S16)part >> 7) & 0xff;
  const V8 partly = (V8)(above(weight, splat8(kBlurAlone - 1)) == 0);
  return select(partly, sharp + narrow(added), blurred);
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
