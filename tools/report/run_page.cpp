#include "tools/report/run_page.h"

#include <cmath>
#include <utility>

#include "tools/error.h"
#include "tools/quality/score.h"
#include "tools/quality/verdict.h"
#include "tools/report/agreement.h"
#include "tools/report/noise_plots.h"
#include "tools/report/parts.h"

namespace zavri::tools {
namespace {

// What the numbers and the noise plots of a run come from.
struct Judged {
  Score before;
  Score after;
  std::vector<PagePlot> plots;
  std::string how;
};

Judged judge_by_clean(const DenoiseRun& run, const Frame& before) {
  const Scorer scorer(*run.clean, before, run.moving);
  return {scorer.before(), scorer.score(run.result.frame),
          noise_by_level(*run.clean, before, run.result.frame), "Judged by the clean frame."};
}

Judged judge_by_leaving_out(const DenoiseRun& run) {
  Denoise denoise = run.denoise;
  denoise.reference = 0;
  const auto merge = [&](const Frames& frames) { return denoise.run(frames).frame; };
  Frames others(run.frames.begin(), run.frames.end() - 1);
  const Frame& left_out = run.frames.back();
  const NoiseFit fit = fit_noise(run.frames);
  const Scorer scorer(run.frames, run.frames.size() - 1);
  const long moving = std::lround(100 * scorer.moving_share());
  return {scorer.before(), score_by_leaving_out(run.frames, merge),
          noise_by_level(left_out, others[0], merge(others), &fit),
          "Judged by leaving out one frame after the other. Of the frame, " +
              std::to_string(moving) +
              " % move or are shaken: noise and texture tell nothing of these parts."};
}

PageScore number(const std::string& name, const char* unit, const char* meaning, double value) {
  PageScore score;
  score.name = name;
  score.unit = unit;
  score.meaning = meaning;
  score.value = value;
  return score;
}

void add_scores(const std::string& plane, const PlaneScore& before, const PlaneScore& after,
                std::vector<PageScore>& scores) {
  scores.push_back(number(plane + ": noise removed", "dB",
                          "In flat parts; the ideal merge of four frames has 6.02.",
                          after.noise_removed));
  scores.push_back(number(plane + ": texture kept", "dB",
                          "PSNR in the quarter of the blocks with most detail.",
                          after.texture_psnr));
  scores.back().baseline = before.texture_psnr;
  const bool moves = after.ghost_error.has_value();
  scores.push_back(number(plane + ": ghost error", moves ? "levels" : "",
                          moves ? "Of the coarse picture where something moves."
                                : "Nothing is known to move, and so nothing of ghosts.",
                          after.ghost_error.value_or(std::nan(""))));
  scores.back().higher_is_better = false;
  scores.back().baseline = before.ghost_error;
}

PageTable parameters(const DenoiseRun& run) {
  Denoise denoise = run.denoise;
  PageTable table{"Parameters", "", {{"Name", "", 2}, {"Value", "", 0}}, {}, {}};
  for (const Setting& setting : denoise.settings()) {
    const std::string text = setting.is_flag() ? (denoise.smooth ? "yes" : "no") : setting.text();
    table.rows.push_back({"--" + setting.name, text});
  }
  table.rows.push_back({"size", run.result.frame.size()});
  table.rows.push_back({"frames", static_cast<double>(run.frames.size())});
  for (const auto& [name, value] : run.result.figures) {
    table.rows.push_back({"used " + name.substr(0, 6) + (name.size() > 6 ? " luma" : ""), value});
  }
  return table;
}

int figure(const Result& result, const std::string& name) {
  for (const auto& [figure_name, value] : result.figures) {
    if (figure_name == name) return static_cast<int>(value);
  }
  return 0;
}

// The edge modes merge by limits that change from column to column, and have no map.
std::vector<PageAgreement> agreements_of(const DenoiseRun& run) {
  const Merge merge = run.denoise.merge;
  if (run.frames.size() < 2 || (merge != Merge::kWhole && merge != Merge::kChroma)) return {};
  return agreements(run.frames,
                    {static_cast<size_t>(run.denoise.reference), figure(run.result, "thresh"),
                     figure(run.result, "thresh_luma"), merge == Merge::kWhole});
}

}  // namespace

ReportPage page_of(const DenoiseRun& run) {
  const Frame& before = run.frames[static_cast<size_t>(run.denoise.reference)];
  ReportPage page;
  page.title = "Denoise of " + std::to_string(run.frames.size()) + " frames, " + before.size();
  page.remarks = run.result.remarks;
  constexpr size_t kFewestToLeaveOut = 3;
  try {
    if (run.clean == nullptr && run.frames.size() < kFewestToLeaveOut) {
      throw Error("without a clean frame, three frames are needed to tell what was gained");
    }
    Judged judged = run.clean != nullptr ? judge_by_clean(run, before) : judge_by_leaving_out(run);
    add_scores("Luma", judged.before.luma, judged.after.luma, page.scores);
    add_scores("Chroma", judged.before.chroma, judged.after.chroma, page.scores);
    page.plots = std::move(judged.plots);
    const std::vector<std::string> worse = losses(judged.before, judged.after);
    page.remarks.insert(page.remarks.end(), worse.begin(), worse.end());
    page.summary = judged.how;
  } catch (const Error& error) {
    page.remarks.push_back(error.what());
  }
  page.comparisons = compared({before, run.result.frame, run.clean, run.moving});
  page.agreements = agreements_of(run);
  page.tables = {parameters(run)};
  return page;
}

}  // namespace zavri::tools
