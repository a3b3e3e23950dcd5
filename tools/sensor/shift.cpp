#include "tools/sensor/shift.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "tools/sensor/rows.h"

namespace zavri::tools {
namespace {

constexpr int kTaps = 2 * kShiftReach;
constexpr double kPi = 3.14159265358979323846;

// Describes a translation along one axis: the result at i is the sum of weights[t] times the
// picture at i + first + t.
struct Taps {
  explicit Taps(double shift) {
    const double whole = std::floor(-shift);
    const double fraction = -shift - whole;
    first = static_cast<int>(whole) - kShiftReach + 1;
    double sum = 0;
    for (int t = 0; t < kTaps; ++t) {
      weights[static_cast<size_t>(t)] = weight(t - kShiftReach + 1 - fraction);
      sum += weights[static_cast<size_t>(t)];
    }
    for (double& w : weights) w /= sum;
  }

  // The weight is a sinc under a window that is itself one.
  static double weight(double distance) {
    const auto sinc = [](double x) { return x == 0 ? 1 : std::sin(kPi * x) / (kPi * x); };
    return std::abs(distance) < kShiftReach ? sinc(distance) * sinc(distance / kShiftReach) : 0;
  }

  int first;
  std::array<double, kTaps> weights;
};

// Adds weight * from[i] to to[i], i in [0, count).
void accumulate(float weight, const float* from, float* to, size_t count) {
  for (size_t i = 0; i < count; ++i) to[i] += weight * from[i];
}

// Moves one row of the picture along x.
class RowShift {
 public:
  RowShift(const Picture& picture, const Taps& taps)
      : picture_(picture), taps_(taps), padded_(3 * static_cast<size_t>(picture.width + kTaps)) {}

  void run(int y, float* to) {
    const auto width = static_cast<size_t>(picture_.width);
    const uint8_t* const row =
        &picture_.rgb[3 * width * static_cast<size_t>(std::clamp(y, 0, picture_.height - 1))];
    for (int i = 0; i < picture_.width + kTaps; ++i) {
      const auto x = static_cast<size_t>(std::clamp(i + taps_.first, 0, picture_.width - 1));
      std::copy_n(row + 3 * x, 3, &padded_[3 * static_cast<size_t>(i)]);
    }
    std::fill_n(to, 3 * width, 0.0F);
    for (size_t t = 0; t < kTaps; ++t) {
      accumulate(static_cast<float>(taps_.weights[t]), &padded_[3 * t], to, 3 * width);
    }
  }

 private:
  const Picture& picture_;
  const Taps& taps_;
  std::vector<float> padded_;
};

}  // namespace

Picture shifted(const Picture& picture, double x, double y) {
  if (x == 0 && y == 0) return picture;
  const Taps across(x);
  const Taps down(y);
  Picture result(picture.width, picture.height);
  const size_t row = 3 * static_cast<size_t>(picture.width);
  // Rows of a band share the rows that they are made of.
  constexpr int kBand = 64;
  for_each_row((picture.height + kBand - 1) / kBand, [&](int band) {
    const int top = band * kBand;
    const int rows = std::min(kBand, picture.height - top);
    RowShift row_shift(picture, across);
    std::vector<float> moved(row * static_cast<size_t>(rows + kTaps));
    for (int i = 0; i < rows + kTaps; ++i) {
      row_shift.run(top + i + down.first, &moved[row * static_cast<size_t>(i)]);
    }
    std::vector<float> sums(row);
    for (int i = 0; i < rows; ++i) {
      std::fill(sums.begin(), sums.end(), 0.0F);
      for (size_t t = 0; t < kTaps; ++t) {
        accumulate(static_cast<float>(down.weights[t]), &moved[row * (static_cast<size_t>(i) + t)],
                   sums.data(), row);
      }
      uint8_t* const to = &result.rgb[row * static_cast<size_t>(top + i)];
      for (size_t c = 0; c < row; ++c) {
        to[c] = static_cast<uint8_t>(std::clamp(sums[c] + 0.5F, 0.0F, 255.0F));
      }
    }
  });
  return result;
}

}  // namespace zavri::tools
