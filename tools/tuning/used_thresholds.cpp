#include "tools/tuning/used_thresholds.h"

#include <functional>

namespace zavri::tools {
namespace {

constexpr int kMostRequest = 100;

// Makes a row for each range within [first, last] in which used(x, size) is the same for every
// size.
Report table(const std::string& name, int first, int last, const std::vector<Size>& sizes,
             const std::function<int(int, const Size&)>& used) {
  Report rows = Report::array();
  for (int x = first; x <= last; ++x) {
    Report now = Report::array();
    for (const Size& size : sizes) now.push_back(used(x, size));
    if (!rows.empty() && rows.back()["used"] == now) {
      rows.back()["to"] = x;
    } else {
      rows.push_back({{name, x}, {"to", x}, {"used", now}});
    }
  }
  return rows;
}

}  // namespace

int used_threshold(int value, const Size& size) {
  Denoise denoise;
  denoise.curve = {{0, static_cast<uint8_t>(value)}};
  return denoise.used(size).chroma;
}

std::vector<DistinctValue> distinct_values(const Size& size) {
  std::vector<DistinctValue> distinct;
  for (int value = 0; value <= UINT8_MAX; ++value) {
    const int used = used_threshold(value, size);
    if (distinct.empty() || used > distinct.back().used) distinct.push_back({value, used});
  }
  return distinct;
}

Report used_thresholds(const Denoise& curves, const std::vector<Size>& sizes, int first_gain,
                       int last_gain) {
  const auto used = [&](int gain, const Size& size) {
    Denoise denoise = curves;
    denoise.gain = gain;
    return denoise.used(size);
  };
  const auto chroma = [&](int gain, const Size& size) { return used(gain, size).chroma; };
  const auto luma = [&](int gain, const Size& size) { return used(gain, size).luma; };
  Report report;
  for (const Size& size : sizes) report["used_at_sizes"].push_back(size.text());
  report["chroma"] = table("gain", first_gain, last_gain, sizes, chroma);
  if (text_of(curves.curve) != text_of(curves.curve_luma)) {
    report["luma"] = table("gain", first_gain, last_gain, sizes, luma);
  }
  report["requests"] = table("request", 1, kMostRequest, sizes, used_threshold);
  return report;
}

}  // namespace zavri::tools
