#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

#include "device/probes.h"

namespace zavri::device {
namespace {

// Scales a picture that changes along one axis alone; returns a line of the result along it.
template <class Profile>
std::vector<int> scaled_line(const Scale& scale, Axis axis, uint32_t from, uint32_t to,
                             Profile profile) {
  const bool is_along = axis == Axis::kAlong;
  const Picture source(from, from);
  const Picture target(to, to);
  source.fill([&](uint32_t x, uint32_t y) { return profile(static_cast<int>(is_along ? x : y)); });
  scale(source, target);
  std::vector<int> line;
  for (uint32_t i = 0; i < to; ++i) {
    line.push_back(is_along ? target.at(i, to / 2) : target.at(to / 2, i));
  }
  return line;
}

// Sample i lies at offset + step * i of the source.
struct Mapping {
  double step;
  double offset;
  double at(double i) const { return offset + step * i; }
};

// A ramp shows where each sample comes from; the line of least squares through these places is
// finer than the steps of 1/slope that bytes allow.
Mapping measure_mapping(const Scale& scale, Axis axis, uint32_t from, uint32_t to, int slope) {
  const std::vector<int> line =
      scaled_line(scale, axis, from, to, [=](int i) { return slope * i + 20; });
  double n = 0, sum_i = 0, sum_p = 0, sum_ii = 0, sum_ip = 0;
  const uint32_t margin = 4 * to / from;  // where taps may reach beyond the ends
  for (uint32_t i = margin; i < to - margin; ++i) {
    const double place = (line[i] - 20) / static_cast<double>(slope);
    n += 1;
    sum_i += i;
    sum_p += place;
    sum_ii += static_cast<double>(i) * i;
    sum_ip += i * place;
  }
  const double step = (n * sum_ip - sum_i * sum_p) / (n * sum_ii - sum_i * sum_i);
  return {step, (sum_p - step * sum_i) / n};
}

std::string mapping_of_axis(const Scale& scale, Axis axis) {
  constexpr uint32_t kFrom = 24;
  constexpr uint32_t kTo = 60;
  constexpr int kSlope = 10;  // with which no sample of the first two mappings is rounded
  constexpr double kRatio = 1.0 * kFrom / kTo;
  constexpr struct {
    const char* name;
    Mapping mapping;
  } kMappings[] = {
      {"centres aligned, (i + 1/2) * from / to - 1/2", {kRatio, kRatio / 2 - 0.5}},
      {"corners aligned, i * from / to", {kRatio, 0}},
      {"first and last samples aligned, i * (from - 1) / (to - 1)", {(kFrom - 1.0) / (kTo - 1), 0}},
  };
  const Mapping found = measure_mapping(scale, axis, kFrom, kTo, kSlope);
  const char* name = "none of the known mappings";
  for (const auto& known : kMappings) {
    const double first = std::abs(found.at(0) - known.mapping.at(0));
    const double last = std::abs(found.at(kTo - 1) - known.mapping.at(kTo - 1));
    if (std::max(first, last) < 0.12) name = known.name;
  }
  char text[160];
  snprintf(text, sizeof text, "%s (of %u to %u: %.3f * i %+.3f)", name, kFrom, kTo, found.step,
           std::round(1000 * found.offset) / 1000 + 0.0);  // no "-0.000"
  return text;
}

double linear(double d) { return std::max(0.0, 1 - std::abs(d)); }

double box(double d) { return d >= -0.5 && d < 0.5 ? 1 : 0; }

// Most cubics in use belong to this family of two parameters.
double cubic(double d, double b, double c) {
  d = std::abs(d);
  if (d >= 2) return 0;
  if (d < 1)
    return ((12 - 9 * b - 6 * c) * d * d * d + (-18 + 12 * b + 6 * c) * d * d + 6 - 2 * b) / 6;
  return ((-b - 6 * c) * d * d * d + (6 * b + 30 * c) * d * d + (-12 * b - 48 * c) * d + 8 * b +
          24 * c) /
         6;
}

double sinc(double d) {
  constexpr double kPi = 3.14159265358979;
  return d == 0 ? 1 : std::sin(kPi * d) / (kPi * d);
}

constexpr struct {
  const char* name;
  double (*weight)(double distance);
} kInterpolations[] = {
    {"nearest", box},
    {"linear", linear},
    {"Catmull-Rom, cubic with a = -1/2", [](double d) { return cubic(d, 0, 0.5); }},
    {"cubic with a = -3/4", [](double d) { return cubic(d, 0, 0.75); }},
    {"cubic with a = -1", [](double d) { return cubic(d, 0, 1); }},
    {"cubic B-spline", [](double d) { return cubic(d, 1, 0); }},
    {"Mitchell-Netravali", [](double d) { return cubic(d, 1 / 3., 1 / 3.); }},
    {"Lanczos, 2 lobes", [](double d) { return std::abs(d) < 2 ? sinc(d) * sinc(d / 2) : 0; }},
    {"Lanczos, 3 lobes", [](double d) { return std::abs(d) < 3 ? sinc(d) * sinc(d / 3) : 0; }},
};

// Scales a weight so that those of all samples of one phase sum to 1.
template <class Weight>
double normalised(Weight weight, double distance) {
  double sum = 0;
  for (int i = -4; i <= 4; ++i) sum += weight(distance - std::floor(distance) + i);
  return weight(distance) / sum;
}

// Measures the weights by an impulse on a background from which weights below zero can be seen.
std::string taps_of_axis(const Scale& scale, Axis axis) {
  constexpr uint32_t kFrom = 24;
  constexpr uint32_t kTo = 4 * kFrom;
  constexpr int kSlope = 8;
  constexpr int kImpulse = kFrom / 2;
  constexpr int kBackground = 64;
  constexpr int kImpulseHeight = 191;
  const Mapping mapping = measure_mapping(scale, axis, kFrom, kTo, kSlope);
  const std::vector<int> line = scaled_line(scale, axis, kFrom, kTo, [](int i) {
    return i == kImpulse ? kBackground + kImpulseHeight : kBackground;
  });
  double best = 1;
  const char* name = "";
  for (const auto& known : kInterpolations) {
    double largest = 0;
    for (uint32_t i = 0; i < kTo; ++i) {
      const double weight = static_cast<double>(line[i] - kBackground) / kImpulseHeight;
      largest =
          std::max(largest, std::abs(weight - normalised(known.weight, mapping.at(i) - kImpulse)));
    }
    if (largest < best) {
      best = largest;
      name = known.name;
    }
  }
  char text[96];
  snprintf(text, sizeof text, "%s%s (weights differ by at most %.3f):",
           best < 0.03 ? "" : "none of the known interpolations; nearest is ", name, best);
  std::string weights = text;
  for (uint32_t i = 0; i < kTo; ++i) {
    if (line[i] == kBackground) continue;
    snprintf(text, sizeof text, " %.3f",
             static_cast<double>(line[i] - kBackground) / kImpulseHeight);
    weights += text;
  }
  return weights;
}

std::string both_axes(const Scale& scale, std::string (*measure)(const Scale&, Axis)) {
  const std::string along = measure(scale, Axis::kAlong);
  const std::string down = measure(scale, Axis::kDown);
  return along == down ? along : "along " + along + "; down " + down;
}

}  // namespace

std::string scale_mapping(const Scale& scale) { return both_axes(scale, mapping_of_axis); }

std::string scale_taps(const Scale& scale) { return both_axes(scale, taps_of_axis); }

}  // namespace zavri::device
