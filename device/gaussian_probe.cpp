#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "device/probes.h"

namespace zavri::device {
namespace {

constexpr uint32_t kWidth = 64;
constexpr uint32_t kHeight = 48;
constexpr int kReach = 2;
constexpr int kTaps = 2 * kReach + 1;

Picture blurred(Gaussian gaussian, const Picture& from, int blur_border, uint8_t before = 0) {
  Picture to(from.width, from.height, from.width);
  to.fill([=](uint32_t, uint32_t) { return before; });
  gaussian(from.data(), from.width, from.height, to.data(), blur_border);
  return to;
}

Picture plane() { return {kWidth, kHeight, kWidth}; }

struct Response {
  int weights[kTaps][kTaps];
};

Response impulse_response(Gaussian gaussian) {
  const Picture from = plane();
  const uint32_t x0 = kWidth / 2;
  const uint32_t y0 = kHeight / 2;
  from.fill([=](uint32_t x, uint32_t y) { return x == x0 && y == y0 ? 255 : 0; });
  const Picture to = blurred(gaussian, from, 1);
  Response response{};
  for (uint32_t y = 0; y < kTaps; ++y) {
    for (uint32_t x = 0; x < kTaps; ++x) {
      response.weights[y][x] = to.at(x0 + x - kReach, y0 + y - kReach);
    }
  }
  return response;
}

// Describes the kernel [1 4 6 4 1] along and down, with an addend and a shift after either pass.
struct Arithmetic {
  const char* name;
  bool down_first;
  int first_addend, first_shift, second_addend, second_shift;
};
constexpr Arithmetic kArithmetics[] = {
    {"rounded once, (sum + 128) >> 8", false, 0, 0, 128, 8},
    {"rounded once, halves down, (sum + 127) >> 8", false, 0, 0, 127, 8},
    {"truncated once, sum >> 8", false, 0, 0, 0, 8},
    {"rounded after either pass, along first", false, 8, 4, 8, 4},
    {"rounded after either pass, down first", true, 8, 4, 8, 4},
    {"truncated after either pass, along first", false, 0, 4, 0, 4},
    {"truncated after either pass, down first", true, 0, 4, 0, 4},
};

template <class Sample>
int weighted(Sample sample) {
  return sample(-2) + 4 * sample(-1) + 6 * sample(0) + 4 * sample(1) + sample(2);
}

int model(const Arithmetic& a, const Picture& from, int x, int y) {
  const int sum = weighted([&](int i) {
    return (weighted([&](int j) {
              return static_cast<int>(a.down_first ? from.at(x + i, y + j) : from.at(x + j, y + i));
            }) +
            a.first_addend) >>
           a.first_shift;
  });
  return (sum + a.second_addend) >> a.second_shift;
}

// Says which source sample stands for number i of 0 .. n - 1 where i lies outside; -1 is black.
struct Border {
  const char* name;
  int (*sample)(int i, int n);
};
constexpr Border kBorders[] = {
    {"replicated, a a | a b c", [](int i, int n) { return std::clamp(i, 0, n - 1); }},
    {"reflected, b a | a b c",
     [](int i, int n) { return i < 0    ? -1 - i
                               : i >= n ? 2 * n - 1 - i
                                        : i; }},
    {"reflected without the edge, c b | a b c",
     [](int i, int n) { return i < 0    ? -i
                               : i >= n ? 2 * n - 2 - i
                                        : i; }},
    {"wrapped, from the other edge", [](int i, int n) { return (i + n) % n; }},
    {"black outside", [](int i, int n) { return i < 0 || i >= n ? -1 : i; }},
};

// Holds the outer two samples of either end of a line in the middle of the picture.
struct OuterSamples {
  int place[4];
  uint8_t value[4];
};

OuterSamples outer_samples(const Picture& picture, Axis axis) {
  const int n = static_cast<int>(axis == Axis::kAlong ? picture.width : picture.height);
  OuterSamples outer{{0, 1, n - 2, n - 1}, {}};
  for (int i = 0; i < 4; ++i) {
    const auto place = static_cast<uint32_t>(outer.place[i]);
    outer.value[i] = axis == Axis::kAlong ? picture.at(place, picture.height / 2)
                                          : picture.at(picture.width / 2, place);
  }
  return outer;
}

using Weights = std::array<double, kTaps>;

// Returns the weights that samples have in a picture that changes along this axis alone.
Weights weights_of_axis(Gaussian gaussian, Axis axis) {
  const Response response = impulse_response(gaussian);
  Weights weights{};
  double total = 0;
  for (int i = 0; i < kTaps; ++i) {
    for (int j = 0; j < kTaps; ++j) {
      weights[i] += axis == Axis::kAlong ? response.weights[j][i] : response.weights[i][j];
    }
    total += weights[i];
  }
  for (double& weight : weights) weight /= total;
  return weights;
}

// The picture changes along one axis alone, so that the weights across it do not matter.
std::string border_of_axis(Gaussian gaussian, int blur_border, Axis axis) {
  const Picture from = plane();
  const auto profile = [](uint32_t i) { return noise(i, 1); };
  from.fill([&](uint32_t x, uint32_t y) { return profile(axis == Axis::kAlong ? x : y); });
  const OuterSamples source = outer_samples(from, axis);
  const OuterSamples found = outer_samples(blurred(gaussian, from, blur_border, 7), axis);
  const OuterSamples again = outer_samples(blurred(gaussian, from, blur_border, 201), axis);
  int unwritten = 0;
  int copied = 0;
  for (int i = 0; i < 4; ++i) {
    unwritten += found.value[i] == 7 && again.value[i] == 201;
    copied += found.value[i] == source.value[i];
  }
  if (unwritten > 0) return unwritten == 4 ? "not written" : "not written in part";
  if (copied == 4) return "copied from the source";

  const Weights weights = weights_of_axis(gaussian, axis);
  const int n = static_cast<int>(axis == Axis::kAlong ? from.width : from.height);
  double best = 3;  // weights that are seen through roundings are a little off
  const char* name = "none of the known ones";
  for (const Border& border : kBorders) {
    double largest = 0;
    for (int i = 0; i < 4; ++i) {
      double sum = 0;
      for (int k = 0; k < kTaps; ++k) {
        const int sample = border.sample(found.place[i] + k - kReach, n);
        if (sample >= 0) sum += weights[k] * profile(static_cast<uint32_t>(sample));
      }
      largest = std::max(largest, std::abs(sum - found.value[i]));
    }
    if (largest < best) {
      best = largest;
      name = border.name;
    }
  }
  return name;
}

}  // namespace

std::string gaussian_response(Gaussian gaussian) {
  std::string text;
  for (const auto& row : impulse_response(gaussian).weights) {
    char line[64];
    snprintf(line, sizeof line, "%s%3d %3d %3d %3d %3d", text.empty() ? "" : "\n", row[0], row[1],
             row[2], row[3], row[4]);
    text += line;
  }
  return text;
}

std::string gaussian_rounding(Gaussian gaussian) {
  const Picture from = plane();
  from.fill(noise);
  const Picture to = blurred(gaussian, from, 1);
  for (const Arithmetic& arithmetic : kArithmetics) {
    bool same = true;
    for (int y = kReach; y < static_cast<int>(kHeight) - kReach; ++y) {
      for (int x = kReach; x < static_cast<int>(kWidth) - kReach; ++x) {
        same = same && to.at(x, y) == model(arithmetic, from, x, y);
      }
    }
    if (same) return std::string("[1 4 6 4 1] along and down, ") + arithmetic.name;
  }
  return "none of the known formulas";
}

std::string gaussian_border(Gaussian gaussian, int blur_border) {
  const std::string along = border_of_axis(gaussian, blur_border, Axis::kAlong);
  const std::string down = border_of_axis(gaussian, blur_border, Axis::kDown);
  return along == down ? along : "left and right " + along + "; top and bottom " + down;
}

}  // namespace zavri::device
