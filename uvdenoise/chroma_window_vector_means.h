#pragma once

// The means of the chroma window's vector form take one sample of each of kVectorBytes lines at a
// time.

#include "simd/vec.h"
#include "uvdenoise/chroma_window.h"

namespace zavri {
namespace {

// A Cell has a sample of each line, less 128. Differences of such samples saturate only where they
// are beyond every tolerance.
struct Cell {
  S8 u;
  S8 v;
};

// A Term is what a neighbour adds to the sums.
struct Term {
  U8 weight;
  S8 u;
  S8 v;
};

struct WindowSums {
  Wide weight;
  Wide u;
  Wide v;

  ZAVRI_INLINE void add(Term a, Term b) {
    weight = add_weights(weight, a.weight, b.weight);
    u = add_products(u, a.weight, a.u, b.weight, b.u);
    v = add_products(v, a.weight, a.v, b.weight, b.v);
  }
};

// The sum of the weights in a window lies within these bounds.
constexpr int kLeastWeightSum = kCentreWeight;
constexpr int kMostWeightSum = kCentreWeight + kLongestWindow * INT8_MAX;

ZAVRI_INLINE S16 weight_reciprocals(U16 w) {
  return reciprocals<kLeastWeightSum, kMostWeightSum>(w);
}

// Returns floor(y / w) for signed y, with r = weight_reciprocals(w). As r is within 1/2 of
// 2^15 / w, y * r / 2^15 is within 1/2 of y / w, and rounded to the nearest it is the quotient or
// one more.
ZAVRI_INLINE U16 floor_quotient(U16 y, U16 w, S16 r) {
  const U16 q = (U16)mul_high_rounded((S16)y, r);
  const U16 remainder = y - q * w;  // below 0 exactly where q is one more
  return q + (U16)((S16)remainder >> 15);
}

// Computes the weighted mean as the centre plus the mean of the differences from it, because sums
// of weighted differences fit 16 bits and those of weighted samples do not. It rounds down where
// the rule rounds towards zero: the same, since sums of samples are not negative.
template <size_t kEntries>
class WeightedMean {
 public:
  explicit WeightedMean(const Weights& weights)
      : table_(reinterpret_cast<const uint8_t*>(weights.of)) {}

  ZAVRI_INLINE static WindowSums start(Cell) {
    WindowSums sums{};
    sums.weight = {splat<U16>(kCentreWeight), splat<U16>(kCentreWeight)};
    return sums;
  }

  ZAVRI_INLINE Term term(Cell centre, Cell neighbour) const {
    const S8 u = saturating_sub(neighbour.u, centre.u);
    const S8 v = saturating_sub(neighbour.v, centre.v);
    return {table_.at(max(abs(u), abs(v))), u, v};
  }

  ZAVRI_INLINE static Cell mean(const WindowSums& sums, Cell centre) {
    const Wide& w = sums.weight;
    const S16 lower = weight_reciprocals(w.lower);
    const S16 upper = weight_reciprocals(w.upper);
    const auto moved = [&](S8 sample, const Wide& sum) {
      const S8 by = narrow_signed({floor_quotient(sum.lower + (w.lower >> 1), w.lower, lower),
                                   floor_quotient(sum.upper + (w.upper >> 1), w.upper, upper)});
      return (S8)((U8)sample + (U8)by);
    };
    return {moved(centre.u, sums.u), moved(centre.v, sums.v)};
  }

 private:
  ByteTable<kEntries> table_;
};

// Tells whether all sums of a pass fit 16 bits and none of weights is below kCentreWeight.
inline bool fits_16_bits(const Pass& pass, const Weights& weights) {
  int neighbours = 0;
  for (const Span& span : pass.spans) {
    const int count = span.window.before + span.window.after;
    if (count > neighbours) neighbours = count;
  }
  int largest_weight = 0;
  int largest_product = 0;
  for (int d = 0; d < weights.threshold; ++d) {
    const int weight = weights.of[d];
    if (weight < 0) return false;
    if (weight > largest_weight) largest_weight = weight;
    if (weight * d > largest_product) largest_product = weight * d;
  }
  const int half_of_weights = (kCentreWeight + neighbours * largest_weight) / 2;
  return neighbours * largest_product + half_of_weights <= INT16_MAX;
}

// (2x + 1) * of(n) >> 16 is x / n rounded down, exactly, where x is a sum of n samples and n / 2.
struct CountReciprocals {
  static constexpr int kMostSamples = kLongestTolerantWindow + 1;

  // Returns 2^15 / n to the nearest, but below 2^15.
  static constexpr int of(int n) { return n == 1 ? 0x7fff : (0x8000 + n / 2) / n; }

  static constexpr bool are_exact() {
    for (int n = 1; n <= kMostSamples; ++n) {
      for (int x = 0; x <= 255 * n + n / 2; ++x) {
        if ((2 * x + 1) * of(n) >> 16 != x / n) return false;
      }
    }
    return true;
  }

  uint8_t low[16];
  uint8_t high[16];

  constexpr CountReciprocals() : low{}, high{} {
    for (int n = 1; n <= kMostSamples; ++n) {
      low[n] = static_cast<uint8_t>(of(n));
      high[n] = static_cast<uint8_t>(of(n) >> 8);
    }
  }
};
static_assert(CountReciprocals::are_exact());
constexpr CountReciprocals kCountReciprocals;

// Computes the plain mean of the centre and the neighbours within the fixed tolerance.
class TolerantMean {
 public:
  TolerantMean() : low_(kCountReciprocals.low), high_(kCountReciprocals.high) {}

  ZAVRI_INLINE static WindowSums start(Cell centre) {
    WindowSums sums{};
    sums.add({splat<U8>(1), centre.u, centre.v}, Term{});
    return sums;
  }

  ZAVRI_INLINE static Term term(Cell centre, Cell neighbour) {
    const U8 u_near =
        (U8)(abs(saturating_sub(neighbour.u, centre.u)) <= splat<U8>(kFixedTolerance));
    const S8 lowest = splat<S8>(-kFixedTolerance);
    const U8 v_not_below = (U8)(saturating_sub(neighbour.v, centre.v) >= lowest);
    return {u_near & v_not_below & 1, neighbour.u, neighbour.v};
  }

  ZAVRI_INLINE Cell mean(const WindowSums& sums, Cell) const {
    const U8 counts = narrow(sums.weight);
    const Wide r = widen(low_.at(counts), high_.at(counts));
    const auto quotient = [&](const Wide& sum) {
      return narrow_signed({mean(sum.lower, sums.weight.lower, r.lower),
                            mean(sum.upper, sums.weight.upper, r.upper)});
    };
    return {quotient(sums.u), quotient(sums.v)};
  }

 private:
  ZAVRI_INLINE static U16 mean(U16 sum, U16 count, U16 r) {
    const U16 samples = sum + count * 128;
    return mul_high(2 * (samples + (count >> 1)) + 1, r) - 128;
  }

  ByteTable<16> low_;
  ByteTable<16> high_;
};

// Returns the mean of a window about *centre, whose neighbours are taken in pairs: those in the
// same distance on both sides, or two adjacent ones on one side. The sample just before the centre
// comes last, because it is the last to be known when samples are filtered one after the other.
template <class Mean>
ZAVRI_INLINE Cell filtered(const Cell* centre, Window window, const Mean& mean) {
  const Cell c = *centre;
  WindowSums sums = mean.start(c);
  const int count = window.before + window.after;
  const bool both_sides = window.before == window.after;
  const ptrdiff_t inwards = window.before > 0 ? 1 : -1;
  const Cell* a = both_sides ? centre + window.after : centre - inwards * count;
  if (count % 2 != 0) {
    sums.add(mean.term(c, *a), Term{});
    a += inwards;
  }
  const Cell* b = both_sides ? centre - window.before : a + inwards;
  const ptrdiff_t a_step = both_sides ? -1 : 2 * inwards;
  const ptrdiff_t b_step = both_sides ? 1 : 2 * inwards;
  static_assert(kShortestWindow >= 2);
  int pairs = count / 2;
  do {
    sums.add(mean.term(c, *a), mean.term(c, *b));
    a += a_step;
    b += b_step;
  } while (--pairs != 0);
  return mean.mean(sums, c);
}

}  // namespace
}  // namespace zavri
