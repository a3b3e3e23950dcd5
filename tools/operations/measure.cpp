#include "tools/operations/measure.h"

#include <zavricustpro.h>

#include <numeric>

#include "tools/error.h"

namespace zavri::tools {
namespace {

constexpr int kFewestRows = 2;  // brightness leaves the last row out

Rect largest_rect(const Frame& frame) { return {0, 0, frame.width() - 1, frame.height() - 1}; }

void check(const std::string& name, const Frame& frame, const Rect& rect) {
  const Rect all = largest_rect(frame);
  if (all.width < 1 || all.height < kFewestRows) {
    throw Error(name + ": " + frame.size() + " is too small to be measured");
  }
  const std::string argument = name + ": --rect " + rect.text() + ": ";
  if (rect.width < 1 || rect.height < kFewestRows) {
    throw Error(argument + "at least one column and two rows are measured");
  }
  if (rect.x >= all.width || rect.y > all.height - kFewestRows) {
    throw Error(argument + "the corner lies within 0,0 and " + std::to_string(all.width - 1) + ',' +
                std::to_string(all.height - kFewestRows) + " of " + frame.size());
  }
  const int width = all.width - rect.x;
  const int height = all.height - rect.y;
  if (rect.width > width || rect.height > height) {
    throw Error(argument + "a column must stay free to the right and a row below; from there " +
                std::to_string(width) + 'x' + std::to_string(height) + " of " + frame.size() +
                " would fit");
  }
}

}  // namespace

std::string Rect::text() const {
  return std::to_string(x) + ',' + std::to_string(y) + ',' + std::to_string(width) + ',' +
         std::to_string(height);
}

Setting rect_setting(std::optional<Rect>& rect, const char* what) {
  const auto assign = [&rect](const std::string& text) {
    const auto numbers = parse_list(text, 4, 0, kLargestSide);
    if (!numbers || numbers->size() != 4) return false;
    rect = Rect{(*numbers)[0], (*numbers)[1], (*numbers)[2], (*numbers)[3]};
    return true;
  };
  return {"rect", "x,y,width,height", what, assign, [&rect] { return rect ? rect->text() : ""; }};
}

Rect default_rect(const Frame& frame) {
  Rect rect = largest_rect(frame);
  while (rect.may_wrap()) {
    rect = {rect.x + rect.width / 4, rect.y + rect.height / 4, rect.width / 2, rect.height / 2};
  }
  return rect;
}

Measures measure(const std::string& name, const Frame& frame, const Rect& rect) {
  check(name, frame, rect);
  const auto width = static_cast<uint32_t>(frame.layout().stride);
  const auto height = static_cast<uint32_t>(frame.height());
  const uint8_t* const luma = frame.luma_row(0);
  const T_OptRect whole{rect.x, rect.y, rect.width, rect.height};
  zavri_auto_shoot_opt_set_FV_rect(&whole);
  // The mean is that of the brightness's rows, from a sum that does not wrap.
  uint64_t total = 0;
  for (int y = rect.y; y + 1 < rect.y + rect.height; ++y) {
    const uint8_t* const row = frame.luma_row(y) + rect.x;
    total = std::accumulate(row, row + rect.width, total);
  }
  const double samples = static_cast<double>(rect.width) * (rect.height - 1);
  return {zavri_auto_shoot_opt_get_FV_value(luma, &whole, width, height),
          zavri_auto_shoot_opt_get_FV_value_derivation(luma, width, height),
          zavri_auto_shoot_opt_get_FV_value_average(luma, width, height),
          zavri_auto_shoot_opt_get_bright(luma, &whole, width, height),
          static_cast<double>(total) / samples};
}

}  // namespace zavri::tools
