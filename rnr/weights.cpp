#include "rnr/weights.h"

#include <algorithm>

#ifndef ZAVRI_BUILD_PLAIN
#include "simd/vec.h"
#endif

namespace zavri {
namespace {

uint32_t square(int32_t value) {
  return static_cast<uint32_t>(value) * static_cast<uint32_t>(value);
}

uint8_t weight(int32_t distance, const WeightRule& rule) {
  if (distance >= rule.span || rule.span == 0) return rule.full;
  const auto product = static_cast<int32_t>(rule.full * static_cast<uint32_t>(distance));
  // In 64 bits because of -2^31 / -1.
  return static_cast<uint8_t>(int64_t{product} / rule.span);
}

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

#ifdef ZAVRI_BUILD_PLAIN

void weigh(uint8_t* blur, uint8_t* keep, size_t count, int32_t dx, int32_t dy,
           const WeightRule& rule) {
  weigh_plain(blur, keep, count, dx, dy, rule);
}

#else

// full * D / span for D in [0, span], without a division. D * factor is at most full * 2^24; what
// the factor lacks is worth D / 2^24 <= 1, so the estimate is right or 1 too small. One comparison
// of the remainder tells.
struct Quotient {
  explicit Quotient(const WeightRule& rule)
      : full(rule.full), span(static_cast<uint32_t>(rule.span)), factor((full << kBits) / span) {}

  ZAVRI_INLINE V32 of(V32 distance) const {
    const V32 estimate = distance * factor >> kBits;
    const V32 remainder = distance * full - estimate * span;
    return estimate - (V32)(remainder >= span);  // a true comparison is -1
  }

  static constexpr int kBits = 24;
  uint32_t full;
  uint32_t span;
  uint32_t factor;
};

// Whether D is in [0, 2^31) for every pixel of the row, full * D as well where it matters, and the
// span within what Quotient divides by.
bool lanes_hold(size_t count, int32_t dx, int32_t dy, const WeightRule& rule) {
  const int64_t first = dx;
  const int64_t last = first + static_cast<int64_t>(count) - 1;
  const int64_t nearest = std::clamp<int64_t>(0, first, last);
  const int64_t farthest = std::max(-first, last);
  const int64_t rest = int64_t{dy} * dy - rule.start;
  return rule.span > 0 && rule.span <= 1 << Quotient::kBits &&
         int64_t{rule.full} * rule.span <= INT32_MAX && nearest * nearest + rest >= 0 &&
         farthest * farthest + rest <= INT32_MAX;
}

// D of the pixels of one vector of bytes. Lane j of part p is pixel 4 * j + p: shifted by p bytes,
// the parts are the bytes in their order.
struct Distances {
  Distances(int32_t dx, uint32_t rest) {
    V32 lane{};
    for (uint32_t j = 0; j < kPixels / 4; ++j) lane[j] = 4 * j;
    for (uint32_t p = 0; p < 4; ++p) {
      const V32 x = lane + static_cast<uint32_t>(dx) + p;
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
  V32 part[4];
  V32 step[4];  // (x + kPixels)^2 - x^2
};

ZAVRI_INLINE V8 weights(const Distances& distances, const Quotient& quotient) {
  V32 bytes{};
  for (int p = 0; p < 4; ++p) {
    const V32 distance = distances.part[p];
    const V32 within = (V32)(distance < quotient.span);
    bytes |= quotient.of(select(within, distance, V32{} + quotient.span)) << 8 * p;
  }
  return (V8)bytes;
}

void weigh(uint8_t* blur, uint8_t* keep, size_t count, int32_t dx, int32_t dy,
           const WeightRule& rule) {
  if (count < kVectorBytes || !lanes_hold(count, dx, dy, rule)) {
    return weigh_plain(blur, keep, count, dx, dy, rule);
  }
  const Quotient quotient(rule);
  const uint32_t rest = square(dy) - static_cast<uint32_t>(rule.start);
  size_t i = 0;
  while (i < count) {
    i = std::min(i, count - kVectorBytes);  // the last vector repeats some of the one before it
    Distances distances(dx + static_cast<int32_t>(i), rest);
    for (; i + kVectorBytes <= count; i += kVectorBytes) {
      const V8 w = weights(distances, quotient);
      store(blur + i, w);
      store(keep + i, splat8(kWholeWeight) - w);
      distances.advance();
    }
  }
}

#endif

}  // namespace

WeighFunction weigh_kernel(ThisBuild) { return weigh; }

}  // namespace zavri
