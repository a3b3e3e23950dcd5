#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "tools/commands/commands.h"
#include "tools/error.h"
#include "tools/frame_io.h"
#include "tools/metrics.h"

namespace zavri::tools {
namespace {

// Differences around mid-grey, magnified so that single levels show.
Frame difference_of(const Frame& a, const Frame& b) {
  constexpr int kMagnified = 8;
  Frame difference(a.width, a.height);
  const auto fill = [](const auto& from, const auto& other, auto& to) {
    for (size_t i = 0; i < to.size(); ++i) {
      to[i] = static_cast<uint8_t>(std::clamp(128 + kMagnified * (from[i] - other[i]), 0, 255));
    }
  };
  fill(a.luma, b.luma, difference.luma);
  fill(a.chroma, b.chroma, difference.chroma);
  return difference;
}

}  // namespace

int run_compare(const CompareOptions& options, const Console& console) {
  if (!options.difference.empty()) {
    check_extension(options.difference);
    check_output(options.difference, console.force);
  }
  const Frame a = load_frame(options.a, options.raw).with_u_first();
  const Frame b = load_frame(options.b, options.raw).with_u_first();
  if (a.width != b.width || a.height != b.height) {
    throw Error(options.b + ": " + b.size() + " cannot be compared with " + a.size());
  }
  Report table = Report::array();
  bool above_limit = true;
  for (const PlaneDifference& plane : compare(a, b)) {
    table.push_back({{"plane", plane.plane},
                     {"PSNR", decimals(plane.psnr, 2)},
                     {"SSIM", decimals(plane.ssim, 4)},
                     {"largest difference", plane.largest}});
    above_limit &= plane.psnr >= options.min_psnr;
  }
  if (!options.difference.empty()) {
    write_file(options.difference, encode(difference_of(a, b), options.difference));
  }
  console.print({{"size", a.size()}, {"planes", table}});
  return above_limit ? kDone : kBelowLimit;
}

}  // namespace zavri::tools
