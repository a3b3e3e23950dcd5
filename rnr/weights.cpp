#include "rnr/weights.h"

#include <algorithm>

#include "simd/vec.h"

namespace zavri {
namespace {

uint32_t square(int32_t value) {
  return static_cast<uint32_t>(value) * static_cast<uint32_t>(value);
}

// Applies the rule to one pixel.
uint8_t weight(int32_t distance, const WeightRule& rule) {
  if (distance >= rule.span || rule.span == 0) return rule.full;
  const auto product = static_cast<int32_t>(rule.full * static_cast<uint32_t>(distance));
  // A product of -2^31 over a span of -1 needs 64 bits.
  return static_cast<uint8_t>(int64_t{product} / rule.span);
}

// Computes full * D / span for D in [0, span] without a division, as D times the span's reciprocal
// in units of 1 / 2^24. The product is at most full * 2^24. The reciprocal is less than a unit too
// small, which for D is worth at most D / 2^24 <= 1: the estimate is the quotient or 1 less, and
// the remainder tells which.
struct Quotient {
  explicit Quotient(const WeightRule& rule)
      : full(rule.full), span(static_cast<uint32_t>(rule.span)), factor((full << kBits) / span) {}

  ZAVRI_INLINE U32 of(U32 distance) const {
    const U32 estimate = distance * factor >> kBits;
    const U32 remainder = distance * full - estimate * span;
    return estimate - (U32)(remainder >= span);  // a true comparison is -1
  }

  static constexpr int kBits = 24;
  uint32_t full;
  uint32_t span;
  uint32_t factor;
};

void weigh_plain(uint8_t* blur, uint8_t* keep, size_t count, int32_t dx, int32_t dy,
                 const WeightRule& rule) {
  uint32_t distance = square(dx) + square(dy) - static_cast<uint32_t>(rule.start);
  uint32_t step = 2 * static_cast<uint32_t>(dx) + 1;
  for (size_t i = 0; i < count; ++i) {
    blur[i] = weight(static_cast<int32_t>(distance), rule);
    keep[i] = static_cast<uint8_t>(kWholeWeight - blur[i]);
    distance += step;
    step += 2;
  }
}

// Holds D for the pixels of a vector of bytes. Lane j of part p is pixel 4 * j + p: the parts
// shifted left by 8 * p bits, joined, are the bytes in their order.
struct Distances {
  Distances(int32_t dx, uint32_t rest) {
    U32 lane{};
    for (uint32_t j = 0; j < kPixels / 4; ++j) lane[j] = 4 * j;
    for (uint32_t p = 0; p < 4; ++p) {
      const U32 x = lane + static_cast<uint32_t>(dx) + p;
      part[p] = x * x + rest;
      step[p] = 2 * kPixels * x + kPixels * kPixels;
    }
  }

  ZAVRI_INLINE void advance() {
    for (int p = 0; p < 4; ++p) {
      part[p] += step[p];
      step[p] += 2 * kPixels * kPixels;
    }
  }

  static constexpr uint32_t kPixels = kVectorBytes;
  U32 part[4];
  U32 step[4];  // (x + kPixels)^2 - x^2
};

ZAVRI_INLINE U8 weights(const Distances& distances, const Quotient& quotient) {
  U32 bytes{};
  for (int p = 0; p < 4; ++p) {
    const U32 distance = min(distances.part[p], splat<U32>(quotient.span));
    bytes |= quotient.of(distance) << 8 * p;
  }
  return (U8)bytes;
}

// Weighs a row of at least one vector. The last vector repeats some of the one before it.
void weigh_vectors(uint8_t* blur, uint8_t* keep, size_t count, int32_t dx, int32_t dy,
                   const WeightRule& rule) {
  const Quotient quotient(rule);
  const uint32_t rest = square(dy) - static_cast<uint32_t>(rule.start);
  size_t i = 0;
  while (i < count) {
    i = std::min(i, count - kVectorBytes);
    Distances distances(dx + static_cast<int32_t>(i), rest);
    for (; i + kVectorBytes <= count; i += kVectorBytes) {
      const U8 w = weights(distances, quotient);
      store(blur + i, w);
      store(keep + i, splat<U8>(kWholeWeight) - w);
      distances.advance();
    }
  }
}

// Tells whether nothing wraps or is negative on the way to the weights of a row: D of every pixel
// is in [0, 2^31), full * D is where it is divided, and the span is one that Quotient divides by.
bool nothing_wraps(size_t count, int32_t dx, int32_t dy, const WeightRule& rule) {
  const int64_t first = dx;
  const int64_t last = first + static_cast<int64_t>(count) - 1;
  const int64_t nearest = std::clamp<int64_t>(0, first, last);
  const int64_t farthest = std::max(-first, last);
  const int64_t rest = int64_t{dy} * dy - rule.start;
  return rule.span > 0 && rule.span <= 1 << Quotient::kBits &&
         int64_t{rule.full} * rule.span <= INT32_MAX && nearest * nearest + rest >= 0 &&
         farthest * farthest + rest <= INT32_MAX;
}

void weigh(uint8_t* blur, uint8_t* keep, size_t count, int32_t dx, int32_t dy,
           const WeightRule& rule) {
  if (kVectorized && count >= kVectorBytes && nothing_wraps(count, dx, dy, rule)) {
    return weigh_vectors(blur, keep, count, dx, dy, rule);
  }
  weigh_plain(blur, keep, count, dx, dy, rule);
}

}  // namespace

WeighFunction weigh_kernel(ThisBuild) { return weigh; }

}  // namespace zavri
