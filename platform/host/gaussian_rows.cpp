#include <algorithm>

#include "platform/host/gaussian.h"
#include "platform/host/lanes.h"

namespace zavri::host {
namespace {

constexpr size_t kTaps = 2 * kGaussianReach + 1;
constexpr int kShift = 8;  // the weights along and those across sum to 16 each
constexpr int kHalf = 1 << (kShift - 1);

// feed(x[0]), feed(x[1]) .. return x[n - 3] + 3 * x[n - 2] + 3 * x[n - 1] + x[n], which is the sum
// of two neighbours taken three times over. The sum of two neighbours among the results has the
// weights 1 4 6 4 1. The sums of the blur fit 16 bits: they are at most 16 * 16 * 255 = 65280, and
// 65408 with kHalf.
template <class T>
struct Binomial {
  ZAVRI_INLINE T feed(T x) {
    const T once = static_cast<T>(last[0] + x);
    const T twice = static_cast<T>(last[1] + once);
    const T thrice = static_cast<T>(last[2] + twice);
    last[0] = x;
    last[1] = once;
    last[2] = twice;
    return thrice;
  }

  T last[kTaps - 2]{};
};

// Takes a copy of the band, because the compiler must assume that a store of bytes changes the
// caller's.
void blur_plain(GaussianBand band, size_t first, size_t last) {
  for (size_t x = first; x < last; ++x) {
    size_t columns[kTaps];
    for (size_t i = 0; i < kTaps; ++i) {
      columns[i] = std::min(std::max(x + i, kGaussianReach) - kGaussianReach, band.width - 1);
    }
    Binomial<uint16_t> down;
    int previous = 0;
    for (size_t j = 0; j < band.count + kTaps - 1; ++j) {
      const uint8_t* const row = band.rows[j];
      const int along = row[columns[0]] + row[columns[4]] + 6 * row[columns[2]] +
                        4 * (row[columns[1]] + row[columns[3]]);
      const int next = down.feed(static_cast<uint16_t>(along));
      if (j >= kTaps - 1) {
        band.to[(j - (kTaps - 1)) * band.width + x] =
            static_cast<uint8_t>((previous + next + kHalf) >> kShift);
      }
      previous = next;
    }
  }
}

// Rows are fetched so many bytes ahead, because walking down the rows, a vector's width at a time,
// is no pattern that processors foresee.
constexpr size_t kAhead = 128;

// Blurs a vector's width of columns from x on, whose neighbours all lie inside. With every row each
// sum takes the place of the one before it. After kTaps rows all are back in the registers where
// they began, so that a loop over as many need not move them.
ZAVRI_INLINE void blur_columns(GaussianBand band, size_t x) {
  Binomial<U16> lower;
  Binomial<U16> upper;
  const auto feed = [&](const uint8_t* row) {
    __builtin_prefetch(row + x + kAhead);
    const Wide sums = binomial_sums(row + x);
    return Wide{lower.feed(sums.lower), upper.feed(sums.upper)};
  };
  Wide previous{};
  for (size_t j = 0; j < kTaps - 1; ++j) previous = feed(*band.rows++);
  uint8_t* to = band.to + x;
  const auto blur_row = [&] {
    const Wide next = feed(*band.rows++);
    __builtin_prefetch(to + kAhead, 1);
    store(to, narrow_high_rounded(previous, next));
    previous = next;
    to += band.width;
  };
  for (; band.count >= kTaps; band.count -= kTaps) {
    static_assert(kTaps == 5);
    blur_row();
    blur_row();
    blur_row();
    blur_row();
    blur_row();
  }
  for (; band.count > 0; --band.count) blur_row();
}

void blur(const GaussianBand& band, size_t first, size_t last) {
  const size_t begin = std::max(first, kGaussianReach);
  const size_t end = std::min(last, band.width - std::min(band.width, kGaussianReach));
  if (!kVectorized || end < begin + kVectorBytes) return blur_plain(band, first, last);
  blur_plain(band, first, begin);
  for_vectors(begin, end, [&](size_t x) { blur_columns(band, x); });
  blur_plain(band, end, last);
}

}  // namespace

GaussianFunction gaussian_kernel(ThisBuild) { return blur; }

}  // namespace zavri::host
