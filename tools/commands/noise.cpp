#include <array>
#include <cmath>
#include <string>

#include "tools/command_line.h"
#include "tools/commands/pages.h"
#include "tools/error.h"
#include "tools/images/storage.h"
#include "tools/report/noise_plots.h"
#include "tools/report/results_page.h"
#include "tools/sensor/noise_fit.h"

namespace zavri::tools {
namespace {

class Noise : public Command {
 public:
  using Command::Command;

  void declare(Options& options) override {
    input_.declare(options, "frames of a still scene, or one frame with flat parts");
    options.add({word("o", output_, "FILE", "the fit as a profile for zavri burst --profile"),
                 word("report", report_, "HTML", "a page with a plot of it")});
  }

  int run(Console& console) override {
    if (!output_.empty()) prepare_output(output_, console, check_file);
    if (!report_.empty()) prepare_page(report_, console);
    constexpr int kMostFrames = 64;
    const std::vector<Frame> frames = load_frames(input_.paths, input_.options, kMostFrames);
    const NoiseFit fit = fit_noise(frames);
    if (!output_.empty()) {
      const std::string json = to_json(profile_of(fit));
      write_file(output_, Bytes(json.begin(), json.end()));
    }
    Report planes = Report::array();
    Report levels = Report::array();
    for (size_t i = 0; i < fit.size(); ++i) {
      planes.push_back(summary(kPlaneNames[i], fit[i]));
      for (const NoiseLevel& level : fit[i].levels) {
        levels.push_back(row_of(kPlaneNames[i], fit[i], level));
      }
      remark(kPlaneNames[i], fit[i], console);
    }
    if (!report_.empty()) write_report(fit, planes, console);
    Report report{
        {"frames", frames.size()}, {"variances_at_levels", kShownLevels}, {"planes", planes}};
    // The list is too long for people.
    if (console.json) report["levels"] = levels;
    console.print(report);
    return kDone;
  }

 private:
  static constexpr std::array<int, 3> kShownLevels = {32, 128, 224};

  static Report summary(const char* name, const PlaneNoise& noise) {
    Report row{{"plane", name}, {"a", decimals(noise.line.a, 5)}, {"b", decimals(noise.line.b, 4)}};
    for (const int level : kShownLevels) {
      row["variances"].push_back(decimals(noise.line.variance(level), 2));
    }
    row["from_level"] = decimals(noise.levels.front().level, 0);
    row["to_level"] = decimals(noise.levels.back().level, 0);
    return row;
  }

  static Report row_of(const char* name, const PlaneNoise& noise, const NoiseLevel& level) {
    return {{"plane", name},
            {"level", decimals(level.level, 1)},
            {"variance", decimals(level.variance, 3)},
            {"fitted", decimals(noise.line.variance(level.level), 3)},
            {"blocks", level.blocks},
            {"doubt", decimals(level.doubt, 2)}};
  }

  // Says where the fit is not to be trusted.
  static void remark(const std::string& name, const PlaneNoise& noise, Console& console) {
    constexpr double kDoubtful = 0.15;
    std::string doubtful;
    for (const NoiseLevel& level : noise.levels) {
      if (level.doubt < kDoubtful) continue;
      doubtful += (doubtful.empty() ? "" : ", ") + std::to_string(std::lround(level.level));
    }
    if (!doubtful.empty()) {
      console.remark(name + ": nothing is flat or still enough at the levels " + doubtful +
                     "; there the noise is less than measured");
    }
    constexpr double kFewLevels = 64;
    if (noise.levels.back().level - noise.levels.front().level < kFewLevels) {
      console.remark(name + ": the frames show few levels; elsewhere the line is a guess");
    }
  }

  void write_report(const NoiseFit& fit, const Report& planes, const Console& console) const {
    ReportPage page = page_of(Report{{"planes", planes}});
    page.title = "Noise of " + std::to_string(input_.paths.size()) +
                 (input_.paths.size() == 1 ? " file" : " files");
    page.plots = {fitted_noise(fit)};
    write_page(page, report_, console);
  }

  Input input_;
  std::string output_;
  std::string report_;
};

Noise g_noise("noise", "fit the variance of noise against the level, a * level + b",
              "noise frame?_4000x3000.nv12 -o profile.json");

}  // namespace
}  // namespace zavri::tools
