#include "tests/support/quotients.h"

#include "uvdenoise/chroma_window_vector_means.h"

namespace zavri::testing {
namespace {

// Where a few weights are tried, both ends are among them.
constexpr int kStep = ZAVRI_EXHAUSTIVE ? 1 : 127;
constexpr int kLanes = kVectorBytes / 2;

void check_quotients_by(int weight, QuotientCheck& check) {
  const U16 w = splat<U16>(static_cast<uint16_t>(weight));
  const S16 r = weight_reciprocals(w);
  for (int first = INT16_MIN; first <= INT16_MAX; first += kLanes) {
    U16 y;
    for (int i = 0; i < kLanes; ++i) y[i] = static_cast<uint16_t>(first + i);
    const U16 quotient = floor_quotient(y, w, r);
    for (int i = 0; i < kLanes; ++i) {
      const int numerator = first + i;
      const int expected = (numerator - (numerator < 0 ? weight - 1 : 0)) / weight;
      check.wrong += static_cast<int16_t>(quotient[i]) != expected;
      ++check.checked;
    }
  }
}

}  // namespace

QuotientCheck check_quotients(ThisBuild) {
  QuotientCheck check{};
  for (int weight = kLeastWeightSum; weight <= kMostWeightSum; weight += kStep) {
    check_quotients_by(weight, check);
  }
  return check;
}

}  // namespace zavri::testing
