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

struct Operands {
  U8 sharp;
  U8 blurred;
  U8 weight;
};

// Blends a vector. What a weight above 128 makes of the mean is not used.
ZAVRI_INLINE U8 blend_vector(Operands of) {
  const U8 partly = at_most(of.weight, splat<U8>(kBlurAlone - 1));
  return select(partly, weighted_mean(of.sharp, of.blurred, of.weight), of.blurred);
}

// Blends at least one vector. The loop loads two before it blends them, so that a processor which
// executes in order waits for both at once.
void blend_vectors(uint8_t* to, const uint8_t* sharp, const uint8_t* blurred, const uint8_t* weight,
                   size_t count) {
  const auto load_at = [=](size_t i) {
    return Operands{load(sharp + i), load(blurred + i), load(weight + i)};
  };
  size_t i = 0;
  for (; i + 2 * kVectorBytes <= count; i += 2 * kVectorBytes) {
    const Operands first = load_at(i);
    const Operands second = load_at(i + kVectorBytes);
    store(to + i, blend_vector(first));
    store(to + i + kVectorBytes, blend_vector(second));
  }
  for_vectors(i, count, [=](size_t at) { store(to + at, blend_vector(load_at(at))); });
}

void blend(uint8_t* to, const uint8_t* sharp, const uint8_t* blurred, const uint8_t* weight,
           size_t count) {
  if (kVectorized && count >= kVectorBytes) {
    return blend_vectors(to, sharp, blurred, weight, count);
  }
  blend_plain(to, sharp, blurred, weight, count);
}

}  // namespace

BlendFunction blend_kernel(ThisBuild) { return blend; }

}  // namespace zavri
