#include "tools/commands/demo_tiles.h"

#include <algorithm>
#include <cstdio>

#include "tools/images/label.h"
#include "tools/images/metrics.h"

namespace zavri::tools {
namespace {

constexpr int kColumns = 3;
constexpr int kScales = 2;  // rows for each part

Frame cut(const Frame& frame, const PageRegion& region) {
  return frame.crop(region.x, region.y, region.width, region.height);
}

// Each pixel becomes a square of scale x scale.
void paste(const Picture& from, int scale, int left, int top, Picture& to) {
  const auto at = [](const Picture& picture, int x, int y) {
    return 3 *
           (static_cast<size_t>(y) * static_cast<size_t>(picture.width) + static_cast<size_t>(x));
  };
  for (int y = 0; y < from.height * scale; ++y) {
    for (int x = 0; x < from.width * scale; ++x) {
      std::copy_n(&from.rgb[at(from, x / scale, y / scale)], 3, &to.rgb[at(to, left + x, top + y)]);
    }
  }
}

// "  Y 36.0 (+5.9)  U 38.1 (+2.9)  V 40.0 (+3.1) dB", without what was gained where both are one.
std::string decibels(const Frame& clean, const Frame& before, const Frame& after) {
  const std::vector<PlaneDifference> then = compare(clean, before);
  const std::vector<PlaneDifference> now = compare(clean, after);
  std::string text;
  for (size_t k = 0; k < now.size(); ++k) {
    char plane[64];
    snprintf(plane, sizeof plane, "  %s %.1f", now[k].plane.c_str(), now[k].psnr);
    text += plane;
    if (&before == &after) continue;
    snprintf(plane, sizeof plane, " (%+.1f)", now[k].psnr - then[k].psnr);
    text += plane;
  }
  return text + " dB";
}

void draw_row(const Versions& versions, const std::string& name, const PageRegion& region,
              int scale, int top, Picture& all) {
  const Frame before = cut(versions.before, region);
  const Frame after = cut(versions.after, region);
  const Frame clean = cut(*versions.clean, region);
  const struct {
    const Frame& frame;
    std::string label;
  } tiles[kColumns] = {
      {before, name + ' ' + std::to_string(scale) + ":1, before" + decibels(clean, before, before)},
      {after, "after" + decibels(clean, before, after)},
      {clean, "clean"}};
  const int width = all.width / kColumns;
  for (int k = 0; k < kColumns; ++k) {
    draw_label(all, k * width, top, width, tiles[k].label);
    paste(to_picture(tiles[k].frame), scale, k * width, top + kLabelHeight, all);
  }
}

}  // namespace

Picture draw_tiles(const Versions& versions) {
  const int width = std::min(kPagePartWidth, versions.before.width());
  const int height = std::min(kPagePartHeight, versions.before.height());
  const std::vector<Part> parts = choose_parts(versions, width, height);
  const int row_height = height + kLabelHeight;
  Picture all(kColumns * width, static_cast<int>(parts.size()) * kScales * row_height);
  int top = 0;
  for (const Part& part : parts) {
    draw_row(versions, part.name, part.region, 1, top, all);
    draw_row(versions, part.name, part.closer, kCloserScale, top + row_height, all);
    top += kScales * row_height;
  }
  return all;
}

}  // namespace zavri::tools
