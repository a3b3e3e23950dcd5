#pragma once

// This file, which platform/host/lanes.h includes, makes some of its operations of others, for the
// targets that have nothing better.

namespace zavri::host {
namespace {

ZAVRI_INLINE Wide binomial_sums(const uint8_t* from) {
  const Wide sums = add_weighted_bytes(widen(load(from + 2)), load(from - 2), 1, load(from - 1), 4);
  return add_weighted_bytes(sums, load(from), 6, load(from + 1), 4);
}

ZAVRI_INLINE U8 narrow_high_rounded(Wide a, Wide b) {
  return narrow(Wide{(a.lower + b.lower + 128) >> 8, (a.upper + b.upper + 128) >> 8});
}

ZAVRI_INLINE Diagonals diagonal_means(U8 a, U8 b, U8 c, U8 d) {
  const auto eighth = [](U8 a1, U8 a2, U8 b1, U8 b2) {
    const Wide sums = add_weighted_bytes(add_weighted_bytes(Wide{}, a1, 3, a2, 3), b1, 1, b2, 1);
    return narrow(Wide{sums.lower >> 3, sums.upper >> 3});
  };
  return {eighth(a, d, b, c), eighth(b, c, a, d)};
}

class FourWeights {
 public:
  ZAVRI_INLINE explicit FourWeights(const int16_t* weights) { memcpy(of_, weights, sizeof of_); }

  ZAVRI_INLINE Sums sum(S16 a, S16 b, S16 c, S16 d) const {
    return add_weighted_words(add_weighted_words(Sums{}, a, of_[0], b, of_[1]), c, of_[2], d,
                              of_[3]);
  }

 private:
  int16_t of_[4];
};

template <int kBits>
ZAVRI_INLINE U8 narrow_rounded(Sums a, Sums b) {
  constexpr int kAdded = (128 << kBits) + (1 << (kBits - 1));
  return narrow_saturated<kBits>(Sums{a.lower + kAdded, a.upper + kAdded},
                                 Sums{b.lower + kAdded, b.upper + kAdded});
}

}  // namespace
}  // namespace zavri::host
