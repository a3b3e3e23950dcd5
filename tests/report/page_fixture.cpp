// Writes a report page that has every part, with texts that try to leave theirs, and a photograph
// of which the program can make a report: PAGE PHOTO.

#include <cmath>
#include <cstdio>
#include <fstream>
#include <limits>

#include "tests/support/pictures.h"
#include "tools/images/encode.h"
#include "tools/images/files.h"
#include "tools/report/page.h"

namespace zavri::tools {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

Picture ramp(int width, int height, int step) {
  Picture picture(width, height);
  for (size_t i = 0; i < picture.rgb.size(); ++i) picture.rgb[i] = static_cast<uint8_t>(i * step);
  return picture;
}

PageComparison comparison(const std::string& caption, int scale, const PageRegion& region,
                          std::optional<double> gained) {
  constexpr int kWidth = 160;
  constexpr int kHeight = 120;
  PageComparison made;
  made.caption = caption;
  made.before = encode(ramp(kWidth, kHeight, 1), ".png");
  made.after = encode(ramp(kWidth, kHeight, 2), ".jpg");
  made.clean = encode(ramp(kWidth, kHeight, 3), ".png");
  made.width = kWidth;
  made.height = kHeight;
  made.scale = scale;
  made.region = region;
  made.gained = gained;
  return made;
}

PageAgreement agreement() {
  Picture map(40, 30);
  for (size_t i = 0; i < map.rgb.size(); ++i) map.rgb[i] = agreement_grey(i / 30 % 4);
  return {"Luma and chroma", encode(map, ".png"), map.width, map.height, {5, 15, 20, 60}};
}

std::vector<PagePlot> plots() {
  PageSeries curve{"found", PageMark::kSteps, {1, 8, 32}, {4, 10, 21}, {3, 8, 18}, {5, 12, 30}};
  PageSeries usual{"built in", PageMark::kSteps, {1, 16, 64}, {6, 12, 30}};
  usual.baseline = true;
  PageSeries points{"whole", PageMark::kPoints, {6.1, 5.2, 6.1}, {31.0, 32.5, 30.2}};
  points.labels = {"thresh 20", "thresh 10", "thresh 30"};
  const PageSeries gap{"after", PageMark::kLine, {0, 64, 128, 255}, {1, kNan, 2, 3}};
  return {{"Gain curve", "", {"Gain", "", false, true}, {"Threshold", "levels"}, {curve, usual}},
          {"Points", "", {"Noise removed", "dB"}, {"Texture kept", "dB"}, {points}},
          {"Noise by level", "", {"Level", ""}, {"Standard deviation", "levels", true}, {gap}}};
}

ReportPage page() {
  ReportPage page;
  page.title = "</title></script><!-- <script>alert(1)</script> & \"title\"";
  page.command = "zavri report 'a <b>.nv12'";
  page.remarks = {"Luma got worse."};
  page.scores = {{"Texture kept", "dB", "", 26.4, 2, true, 33.0, "before", 25.9, 26.8},
                 {"Ghost error", "levels", "", 1.5, 2, false, 2.0}};
  page.comparisons = {comparison("gained", 1, {0, 0, 160, 120}, 2.0),
                      comparison("all", 0, {0, 0, 640, 480}, std::nullopt),
                      comparison("lost", 3, {100, 50, 160, 120}, -1.5)};
  page.agreements = {agreement()};
  page.plots = plots();
  page.tables = {{"Points",
                  "",
                  {{"Name", ""}, {"PSNR", "dB"}},
                  {{"b", 31.25}, {"a", kInfinity}, {"c", kNan}, {"d", -4.0}},
                  1}};
  page.log_lines = {"bytes that are no UTF-8: \xff\xfe", "</pre><img src=x onerror=alert(1)>"};
  return page;
}

}  // namespace
}  // namespace zavri::tools

int main(int count, char** arguments) try {
  if (count != 3) return 2;
  std::ofstream(arguments[1]) << zavri::tools::to_html(zavri::tools::page());
  zavri::tools::save(zavri::tools::half_textured(2048, 1024), arguments[2]);
  return 0;
} catch (const std::exception& error) {
  std::fprintf(stderr, "%s\n", error.what());
  return 2;
}
