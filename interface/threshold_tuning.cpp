#include "interface/threshold_tuning.h"

#include <algorithm>
#include <iterator>

namespace zavri {
namespace {

constexpr T_GainThreshPoint kDefaultCurve[] = {{10, 0}, {11, 6}, {15, 16}, {30, 20}};

struct ScalePoint {
  uint8_t megapixels;
  uint8_t percent;
};
constexpr ScalePoint kScaleCurve[] = {{1, 0},   {3, 30},  {5, 45},  {8, 75},
                                      {13, 85}, {16, 90}, {20, 100}};

// Returns the value at x, x0 <= x < x1, of the line from (x0, y0) to (x1, y1). Each quotient is
// truncated on its own, which makes the curves slightly non-monotone: the built-in one is 16 at a
// gain of 15 and 15 at 16. Tuned devices rely on these values.
int interpolate(int x, int x0, int y0, int x1, int y1) {
  return (x - x0) * y1 / (x1 - x0) + (x1 - x) * y0 / (x1 - x0);
}

}  // namespace

uint8_t tune_threshold(uint8_t requested, uint8_t gain, const T_GainThreshPoint* table,
                       uint8_t count) {
  if (requested >= 1 && requested <= 100) return requested;

  const bool own_table = table != nullptr && count != 0;
  const T_GainThreshPoint* const first = own_table ? table : std::begin(kDefaultCurve);
  const T_GainThreshPoint* const last = own_table ? table + count : std::end(kDefaultCurve);
  const T_GainThreshPoint* const above =
      std::find_if(first, last, [gain](const auto& point) { return point.gain > gain; });

  if (above == last) return last[-1].value;
  if (above == first) return static_cast<uint8_t>(gain * first->value / first->gain);
  return static_cast<uint8_t>(
      interpolate(gain, above[-1].gain, above[-1].value, above->gain, above->value));
}

uint8_t scale_threshold(uint8_t threshold, uint32_t width, uint32_t height) {
  // The product wraps at 2^32 and the quotient at 256.
  const auto megapixels = static_cast<uint8_t>(width * height / 1000000);
  if (megapixels < std::begin(kScaleCurve)->megapixels) return 0;

  const ScalePoint* const above =
      std::find_if(std::begin(kScaleCurve), std::end(kScaleCurve),
                   [megapixels](const auto& point) { return point.megapixels > megapixels; });
  if (above == std::end(kScaleCurve)) return threshold;
  const int percent = interpolate(megapixels, above[-1].megapixels, above[-1].percent,
                                  above->megapixels, above->percent);
  return static_cast<uint8_t>(threshold * percent / 100);
}

}  // namespace zavri
