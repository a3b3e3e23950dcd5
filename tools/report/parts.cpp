#include "tools/report/parts.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

#include "tools/images/encode.h"
#include "tools/quality/blocks.h"

namespace zavri::tools {
namespace {

using Value = std::function<double(const PageRegion& region)>;

Blocks blocks_in(const PageRegion& region) {
  Blocks blocks;
  for (int y = region.y / kBlockSide; y < (region.y + region.height) / kBlockSide; ++y) {
    for (int x = region.x / kBlockSide; x < (region.x + region.width) / kBlockSide; ++x) {
      blocks.push_back({static_cast<uint16_t>(x), static_cast<uint16_t>(y)});
    }
  }
  return blocks;
}

template <class Of>
double mean_of(const Frame& frame, const PageRegion& region, Of of_block) {
  const BlockPlane luma = BlockPlane::luma_of(frame);
  const Blocks blocks = blocks_in(region);
  double sum = 0;
  for (const Block& block : blocks) sum += of_block(luma, block);
  return sum / std::max(1.0, static_cast<double>(blocks.size()));
}

// The region of this size within another that has the highest value.
PageRegion best(const PageRegion& within, int width, int height, const Value& value) {
  PageRegion region{within.x, within.y, std::min(width, within.width),
                    std::min(height, within.height)};
  PageRegion highest = region;
  double reached = -std::numeric_limits<double>::infinity();
  // Even numbers, and beginnings of blocks.
  const int step_x = std::max(kBlockSide, width / 2 / kBlockSide * kBlockSide);
  const int step_y = std::max(kBlockSide, height / 2 / kBlockSide * kBlockSide);
  for (; region.y + region.height <= within.y + within.height; region.y += step_y) {
    for (region.x = within.x; region.x + region.width <= within.x + within.width;
         region.x += step_x) {
      const double here = value(region);
      if (here <= reached) continue;
      reached = here;
      highest = region;
    }
  }
  return highest;
}

// Whether the two have more than half of their width and height in common.
bool is_same(const PageRegion& a, const PageRegion& b) {
  return std::abs(a.x - b.x) < a.width / 2 && std::abs(a.y - b.y) < a.height / 2;
}

// Even, as the sides of a frame's parts are.
int third(int side) { return std::max(2, side / kCloserScale & ~1); }

// Noise shows best where it hides neither in detail nor in the dark or bright.
double evenness(const Frame& frame, const PageRegion& region) {
  constexpr double kDark = 48;
  constexpr double kBright = 176;
  const double level = mean_of(frame, region, level_of);
  const bool is_middle = level >= kDark && level <= kBright;
  return (is_middle ? 0 : -1e6) - mean_of(frame, region, detail_of);
}

PageComparison picture_of(const Versions& versions, const std::string& caption,
                          const PageRegion& region, int scale) {
  const auto encoded = [&](const Frame& frame) {
    if (scale == 0) return encode(shrunk(to_picture(frame), kPageWidth), ".jpg");
    return encode(to_picture(frame.crop(region.x, region.y, region.width, region.height)), ".png");
  };
  PageComparison made;
  made.caption = caption;
  made.before = encoded(versions.before);
  made.after = encoded(versions.after);
  if (versions.clean != nullptr) made.clean = encoded(*versions.clean);
  made.width = scale == 0 ? std::min(region.width, kPageWidth) : region.width;
  made.height = scale == 0 ? region.height * made.width / region.width : region.height;
  made.scale = scale;
  made.region = region;
  if (scale != 0) made.gained = gained(versions, region);
  return made;
}

}  // namespace

std::optional<double> gained(const Versions& versions, const PageRegion& region) {
  if (versions.clean == nullptr) return std::nullopt;
  const BlockPlane clean = BlockPlane::luma_of(*versions.clean);
  const Blocks blocks = blocks_in(region);
  const double before = mean_square_difference(clean, BlockPlane::luma_of(versions.before), blocks);
  const double after = mean_square_difference(clean, BlockPlane::luma_of(versions.after), blocks);
  if (before <= 0 || after <= 0) return std::nullopt;
  return 10 * std::log10(before / after);
}

std::vector<Part> choose_parts(const Versions& versions, int width, int height) {
  // The result shows detail and levels with less noise than the frame before.
  const Frame& scene = versions.clean != nullptr ? *versions.clean : versions.after;
  const auto loss = [&](const PageRegion& region) {
    return -gained(versions, region).value_or(1e3);
  };
  const auto change = [&](const PageRegion& region) {
    return coarse_mean_square(BlockPlane::luma_of(versions.before),
                              BlockPlane::luma_of(versions.after), blocks_in(region));
  };
  const auto motion = [&](const PageRegion& region) {
    if (versions.moving == nullptr) return 0.0;
    const Blocks blocks = blocks_in(region);
    return static_cast<double>(std::count_if(blocks.begin(), blocks.end(), [&](const Block& b) {
      return versions.moving->touches(b.x * kBlockSide, b.y * kBlockSide, kBlockSide, kBlockSide);
    }));
  };
  // Motion has a part of its own.
  const auto detail = [&](const PageRegion& region) {
    return mean_of(scene, region, detail_of) - 1e6 * motion(region);
  };
  const auto even = [&](const PageRegion& region) {
    return evenness(scene, region) - 1e6 * motion(region);
  };

  std::vector<std::pair<const char*, Value>> wanted;
  if (versions.clean != nullptr) wanted.emplace_back("Worst loss", loss);
  if (versions.clean == nullptr) wanted.emplace_back("Most changed", change);
  if (versions.moving != nullptr) wanted.emplace_back("Most motion", motion);
  wanted.insert(wanted.end(), {{"Most detail", detail}, {"Flat", even}});

  std::vector<Part> parts;
  for (const auto& [name, value] : wanted) {
    const PageRegion all{0, 0, scene.width(), scene.height()};
    const PageRegion region = best(all, width, height, value);
    const auto same =
        std::find_if(parts.begin(), parts.end(),
                     [&, here = region](const Part& part) { return is_same(part.region, here); });
    if (same != parts.end()) {
      same->name += std::string(", ") + static_cast<char>(std::tolower(name[0])) + (name + 1);
      continue;
    }
    parts.push_back({name, region, best(region, third(region.width), third(region.height), value)});
  }
  return parts;
}

std::vector<PageComparison> compared(const Versions& versions) {
  const PageRegion all{0, 0, versions.before.width(), versions.before.height()};
  std::vector<PageComparison> pictures{picture_of(versions, "The whole frame", all, 0)};
  for (const Part& part : choose_parts(versions, kPagePartWidth, kPagePartHeight)) {
    pictures.push_back(picture_of(versions, part.name, part.region, 1));
    pictures.push_back(picture_of(versions, part.name, part.closer, kCloserScale));
  }
  return pictures;
}

}  // namespace zavri::tools
