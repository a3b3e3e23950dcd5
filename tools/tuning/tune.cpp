#include "tools/tuning/tune.h"

#include <algorithm>
#include <set>

#include "tools/report/results_page.h"
#include "tools/tuning/sweep.h"

namespace zavri::tools {
namespace {

const char* text_of(Advice advice, Planes planes) {
  switch (advice) {
    case Advice::kUse:
      return planes == Planes::kBoth ? "use the tables" : "use the weights";
    case Advice::kMergeChromaAlone:
      return "merge chroma alone";
    case Advice::kKeepDefault:
      return "keep the default";
    case Advice::kNothingMoves:
      return "keep the default: static bursts do not tell, since where nothing moves a higher "
             "threshold costs nothing";
  }
  return "";
}

std::set<int> gains_of(const Trials& trials) {
  std::set<int> gains;
  for (const Trial& trial : trials) gains.insert(trial.gain);
  return gains;
}

// Makes rows of means over the pictures, of the noisy frames, the default settings and the tuned
// ones.
std::vector<Report> rows_by_gain(const Tuning& tuning) {
  std::vector<Report> rows;
  for (const int gain : gains_of(tuning.trials)) {
    std::vector<Score> before;
    std::vector<Score> standard;
    std::vector<Score> tuned;
    for (const Trial& trial : tuning.trials) {
      if (trial.gain != gain) continue;
      before.push_back(trial.before);
      standard.push_back(trial.standard);
      if (!tuning.choice.empty()) tuned.push_back(trial.scores[tuning.choice.at(gain)]);
    }
    const auto add = [&](const char* settings, const Score& score) {
      Report row{{"gain", gain}, {"settings", settings}};
      row["worth"] = decimals(worth(tuning.planes, score, mean_of(before)), 2);
      row.update(row_of(score));
      rows.push_back(row);
    };
    add("noisy", mean_of(before));
    add("default", mean_of(standard));
    if (!tuned.empty()) add("tuned", mean_of(tuned));
  }
  return rows;
}

// Makes rows of means over the gains, with settings that the picture did not choose.
std::vector<Report> rows_by_picture(const HeldOut& held_out) {
  std::vector<Report> rows;
  const auto add = [&](const HeldOut::Picture& picture, const char* settings, double difference,
                       const Score& score) {
    Report row{{"picture", picture.name}, {"settings", settings}};
    row["difference"] = decimals(difference, 2);
    row.update(row_of(score));
    rows.push_back(row);
  };
  for (const HeldOut::Picture& picture : held_out.pictures) {
    add(picture, "default", 0, picture.standard);
    add(picture, "tuned", picture.difference, picture.tuned);
  }
  return rows;
}

const char* pictures_key(const Tuning& tuning) {
  return tuning.held_out.is_held_out ? "held_out" : "same_picture";
}

}  // namespace

Tuning tune(const Candidates& candidates, Trials trials, uint64_t seed) {
  Tuning tuning;
  tuning.planes = candidates.planes();
  const auto moves = [](const Trial& trial) { return trial.moves; };
  if (candidates.planes() == Planes::kBoth) {
    // The chroma denoise makes no ghosts; merging is chosen by what moves alone.
    const auto still = std::stable_partition(trials.begin(), trials.end(), moves);
    if (still == trials.begin()) {
      tuning.advice = Advice::kNothingMoves;
    } else {
      trials.erase(still, trials.end());
    }
  }
  tuning.trials = std::move(trials);
  if (tuning.advice == Advice::kNothingMoves) return tuning;
  const auto choose = [&](const Trials& some) { return candidates.choose(some); };
  tuning.held_out = hold_out(tuning.trials, candidates.planes(), seed, choose);
  const std::optional<Choice> choice = candidates.choose(tuning.trials);
  if (!choice || tuning.held_out.difference.low <= 0) return tuning;
  tuning.choice = *choice;
  tuning.tables = candidates.tables(*choice);
  const bool chroma_alone = tuning.tables.json.value("mode", "") == "chroma";
  tuning.advice = chroma_alone ? Advice::kMergeChromaAlone : Advice::kUse;
  return tuning;
}

Report report_of(const Tuning& tuning) {
  Report report{{"advice", text_of(tuning.advice, tuning.planes)},
                {"by_gain", rows_by_gain(tuning)}};
  if (tuning.held_out.pictures.empty()) return report;
  report[pictures_key(tuning)] = rows_by_picture(tuning.held_out);
  const Spread& difference = tuning.held_out.difference;
  report["difference"] = {{"mean", decimals(difference.mean, 2)},
                          {"low", decimals(difference.low, 2)},
                          {"high", decimals(difference.high, 2)}};
  return report;
}

ReportPage page_of_tuning(const Tuning& tuning) {
  // Pictures differ by more than settings do, and have no plots.
  ReportPage page = page_of({{"by_gain", rows_by_gain(tuning)}});
  page.tables = page_of(report_of(tuning)).tables;
  page.title = std::string("Tuning of ") +
               (tuning.planes == Planes::kBoth ? "the multi-frame" : "the chroma") + " denoise";
  page.summary = std::string("Advice: ") + text_of(tuning.advice, tuning.planes) + '.';
  if (tuning.held_out.pictures.empty()) return page;
  const Spread& difference = tuning.held_out.difference;
  page.scores.push_back(
      {"Worth above the defaults", "dB", "mean over the pictures, with its 5th and 95th percentile",
       difference.mean, 2, true, 0, "the defaults", difference.low, difference.high});
  if (tuning.choice.empty()) return page;
  PageTable found{"What was found", "", {{"in C", "", 0}}, {}};
  for (const std::string& line : split(tuning.tables.c, '\n')) {
    if (!line.empty()) found.rows.push_back({line});
  }
  page.tables.push_back(found);
  return page;
}

}  // namespace zavri::tools
