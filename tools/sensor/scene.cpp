#include "tools/sensor/scene.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <utility>

#include "tools/sensor/noise.h"
#include "tools/sensor/random.h"
#include "tools/sensor/shift.h"

namespace zavri::tools {
namespace {

const uint8_t* pixel(const Picture& picture, int x, int y) {
  return &picture.rgb[3 * (static_cast<size_t>(y) * static_cast<size_t>(picture.width) +
                           static_cast<size_t>(x))];
}

uint8_t* pixel(Picture& picture, int x, int y) {
  return const_cast<uint8_t*>(pixel(std::as_const(picture), x, y));
}

// Sums the differences of green between neighbours in a square.
int64_t detail_of(const Picture& picture, int left, int top, int size) {
  int64_t sum = 0;
  for (int y = top; y < top + size - 1; ++y) {
    for (int x = left; x < left + size - 1; ++x) {
      const uint8_t* const here = pixel(picture, x, y);
      sum += std::abs(here[1] - here[4]) + std::abs(here[1] - pixel(picture, x, y + 1)[1]);
    }
  }
  return sum;
}

// Returns the square of the picture with most detail, turned upside down so that nowhere it looks
// like what it covers.
Picture most_detailed(const Picture& picture, int size) {
  int64_t most = -1;
  int left = 0;
  int top = 0;
  for (int y = 0; y + size <= picture.height; y += size) {
    for (int x = 0; x + size <= picture.width; x += size) {
      const int64_t detail = detail_of(picture, x, y, size);
      if (detail <= most) continue;
      most = detail;
      left = x;
      top = y;
    }
  }
  Picture square(size, size);
  for (int y = 0; y < size; ++y) {
    for (int x = 0; x < size; ++x) {
      std::copy_n(pixel(picture, left + size - 1 - x, top + size - 1 - y), 3, pixel(square, x, y));
    }
  }
  return square;
}

// Multiplies the light by the same factor everywhere.
void scale_light(double factor, Picture& picture) {
  std::array<uint8_t, 256> table;
  for (int value = 0; value < 256; ++value) {
    table[static_cast<size_t>(value)] =
        static_cast<uint8_t>(std::lround(srgb_from_linear(factor * linear_from_srgb(value))));
  }
  for (uint8_t& sample : picture.rgb) sample = table[sample];
}

}  // namespace

Scene::Scene(const Picture& photograph, const Changes& changes)
    : photograph_(photograph), changes_(changes) {
  constexpr int kShare = 6;  // of the shorter side
  if (!changes.object) return;
  size_ = std::max(2, std::min(photograph.width, photograph.height) / kShare);
  texture_ = most_detailed(photograph, size_);
}

std::vector<View> Scene::views(int frames, uint64_t seed) const {
  Generator generator{seed};
  const auto normal = [&] { return normal_quantile(generator.uniform()); };
  const double speed = changes_.object_speed > 0 ? changes_.object_speed : size_ / 3.0;
  std::vector<View> views;
  for (int k = 0; k < frames; ++k) {
    View view;
    if (k > 0) {
      view.x = views.back().x + changes_.shake * normal();
      view.y = views.back().y + changes_.shake * normal();
      view.light = 1 + changes_.flicker / 100 * (2 * generator.uniform() - 1);
    }
    // The way crosses the middle, twice as far across as down.
    const double way = speed * (k - (frames - 1) / 2.0);
    view.object_x = static_cast<int>(std::lround((photograph_.width - size_) / 2.0 + way));
    view.object_y = static_cast<int>(std::lround((photograph_.height - size_) / 2.0 + way / 2));
    views.push_back(view);
  }
  return views;
}

// Returns how far a pixel is from the object's middle, in a view without shift at (0, 0).
double Scene::from_middle(double x, double y) const {
  const double middle = (size_ - 1) / 2.0;
  return std::hypot(x - middle, y - middle);
}

void Scene::draw_object(const View& view, Picture& picture) const {
  for (int y = 0; y < size_; ++y) {
    for (int x = 0; x < size_; ++x) {
      const int to_x = view.object_x + x;
      const int to_y = view.object_y + y;
      if (to_x < 0 || to_y < 0 || to_x >= picture.width || to_y >= picture.height) continue;
      // The rim is a pixel wide.
      const double cover = std::clamp(size_ / 2.0 - from_middle(x, y), 0.0, 1.0);
      const uint8_t* const from = pixel(texture_, x, y);
      uint8_t* const to = pixel(picture, to_x, to_y);
      for (int c = 0; c < 3; ++c) {
        to[c] = static_cast<uint8_t>(std::lround(to[c] + cover * (from[c] - to[c])));
      }
    }
  }
}

Picture Scene::seen(const View& view) const {
  Picture picture = photograph_;
  draw_object(view, picture);
  picture = shifted(picture, view.x, view.y);
  if (view.light != 1) scale_light(view.light, picture);
  return picture;
}

Mask Scene::moving(const std::vector<View>& views) const {
  Mask mask(photograph_.width, photograph_.height);
  if (size_ == 0) return mask;
  for (const View& view : views) {
    // A shift spreads each pixel to its surroundings.
    const int reach = view.x == 0 && view.y == 0 ? 0 : kShiftReach;
    const double left = view.object_x + view.x;
    const double top = view.object_y + view.y;
    const int last_x = std::min(mask.width() - 1, static_cast<int>(left) + size_ + reach);
    const int last_y = std::min(mask.height() - 1, static_cast<int>(top) + size_ + reach);
    for (int y = std::max(0, static_cast<int>(top) - reach - 1); y <= last_y; ++y) {
      for (int x = std::max(0, static_cast<int>(left) - reach - 1); x <= last_x; ++x) {
        if (from_middle(x - left, y - top) < size_ / 2.0 + reach) mask.add(x, y);
      }
    }
  }
  return mask;
}

}  // namespace zavri::tools
