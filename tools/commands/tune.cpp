#include "tools/tuning/tune.h"

#include <algorithm>

#include "tools/command_line.h"
#include "tools/commands/pages.h"
#include "tools/error.h"

namespace zavri::tools {
namespace {

class Tune : public Command {
 public:
  using Command::Command;

  void declare(Options& options) override;
  int run(Console& console) override;

 private:
  std::unique_ptr<Candidates> candidates_for(const Size& size) const;
  Trials try_bursts(Console& console);
  void check(Console& console) const;

  std::string operation_;
  std::vector<std::string> paths_;
  Input input_;
  std::vector<int> gains_{8, 16, 32};
  int64_t seed_ = 1;
  std::string output_;
  std::string report_;
  std::unique_ptr<Candidates> candidates_;
};

void Tune::declare(Options& options) {
  options.argument("OPERATION", operation_, "denoise or chroma");
  options.arguments("BURST", paths_,
                    "GAIN=FOLDER, a burst at that gain: its frames and, as zavri burst writes "
                    "them, clean_* and mask_*; or a photograph, of which moving bursts are made");
  input_.declare_raw(options);
  const auto parse = [this](const std::string& text) {
    const auto gains = parse_list(text, UINT8_MAX, 1, UINT8_MAX);
    if (gains) gains_ = *gains;
    return gains.has_value();
  };
  options.add({{"gains", "A,B,.. within 1..255", "at which bursts of photographs are made", parse,
                [] { return "8,16,32"; }},
               whole_number("seed", seed_, 0, INT64_MAX, "of noise, motion and spread"),
               word("o", output_, "TABLES", "what was found, in .json or as C in .c or .h"),
               word("report", report_, "HTML", "a page with what was found and how it was")});
}

std::unique_ptr<Candidates> Tune::candidates_for(const Size& size) const {
  if (operation_ == "denoise") return std::make_unique<DenoiseCandidates>(size);
  return std::make_unique<ChromaCandidates>();
}

Trials Tune::try_bursts(Console& console) {
  std::vector<BurstSource> sources;
  size_t bursts = 0;
  for (const std::string& path : paths_) {
    sources.push_back(parse_source(path, gains_));
    bursts += sources.back().gains.size();
  }
  Trials trials;
  std::optional<Progress> progress;
  auto seed = static_cast<uint64_t>(seed_);
  for (const BurstSource& source : sources) {
    for (const int gain : source.gains) {
      TuningBurst burst = load_burst(source, gain, input_.options.raw, seed++);
      Judge judge = burst.clean ? Judge(std::move(burst.frames), *burst.clean,
                                        burst.moving ? &*burst.moving : nullptr)
                                : Judge(burst.frames);
      if (!candidates_) candidates_ = candidates_for(judge.size());
      if (!progress) progress.emplace("tune", bursts * candidates_->count(), !console.quiet);
      if (operation_ == "denoise" && !judge.moves()) {
        console.remark(source.path +
                       ": nothing is known to move in this burst, which does not count");
      }
      trials.push_back(try_all(*candidates_, judge, source.picture, gain, *progress));
    }
  }
  return trials;
}

void Tune::check(Console& console) const {
  if (operation_ != "denoise" && operation_ != "chroma") {
    throw Error(operation_ + ": takes denoise or chroma");
  }
  if (!report_.empty()) prepare_page(report_, console);
  if (output_.empty()) return;
  const std::string extension = extension_of(output_);
  if (extension != ".json" && extension != ".c" && extension != ".h") {
    throw Error("-o " + output_ + ": takes a name in .json, .c or .h");
  }
  prepare_output(output_, console, check_file);
}

int Tune::run(Console& console) {
  check(console);
  Trials trials = try_bursts(console);
  const Tuning tuning = tune(*candidates_, std::move(trials), static_cast<uint64_t>(seed_));
  if (tuning.held_out.pictures.size() == 1) {
    console.remark("one picture: how far its difference holds for others cannot be told");
  }
  if (!report_.empty()) write_page(page_of_tuning(tuning), report_, console);
  Report report = report_of(tuning);
  const auto& [json, c] = tuning.tables;
  if (!output_.empty() && !tuning.choice.empty()) {
    const std::string text = extension_of(output_) == ".json" ? json.dump() + '\n' : c;
    write_file(output_, Bytes(text.begin(), text.end()));
  }
  // People read both as they stand in files.
  const bool for_people = !console.json && !console.quiet && !tuning.choice.empty();
  if (!for_people && !tuning.choice.empty()) {
    report.update(json);
    report["c"] = c;
  }
  console.print(report);
  if (for_people) print_text(c + json.dump() + '\n');
  return kDone;
}

Tune g_tune("tune", "find settings that score better than the defaults without ghosts",
            "tune denoise photo.jpg other.jpg --gains 8,16,32 -o tables.json");

}  // namespace
}  // namespace zavri::tools
