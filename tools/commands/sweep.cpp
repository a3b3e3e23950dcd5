#include "tools/tuning/sweep.h"

#include <algorithm>
#include <filesystem>

#include "tools/command_line.h"
#include "tools/commands/pages.h"
#include "tools/error.h"
#include "tools/report/results_page.h"

namespace zavri::tools {
namespace {

class Sweep : public Command {
 public:
  using Command::Command;

  void declare(Options& options) override;
  int run(Console& console) override;

 private:
  void load();
  std::vector<Report> known_rows(const Console& console) const;
  int print_plan() const;
  std::vector<Report> collect() const;
  std::vector<Report> run_here(Console& console);
  // Returns the command line that makes the row of one point.
  std::string line_of(const Point& point) const;

  std::string operation_;
  Input input_;
  std::string clean_path_;
  std::string mask_path_;
  Axes axes_;
  std::string output_;
  std::string report_;
  bool plan_only_ = false;
  std::vector<std::string> collected_;

  Frames frames_;
  std::optional<Frame> clean_;
  std::optional<Mask> mask_;
  std::string burst_;
  Plan plan_;
};

void Sweep::declare(Options& options) {
  options.argument("OPERATION", operation_, "denoise or chroma");
  input_.declare(options, "frames of one burst, the first of which is worked on");
  options.add({word("reference", clean_path_, "CLEAN",
                    "the clean frame; without it each frame is left out in turn"),
               word("mask", mask_path_, "MASK", "picture that is white where something moves")});
  options.add(axis_settings(axes_));
  const auto collect = [this](const std::string& path) {
    collected_.push_back(path);
    return true;
  };
  options.add({word("o", output_, "ROWS",
                    "rows in .csv or .jsonl, or - for JSON lines; a sweep goes on behind rows that "
                    "are there already"),
               word("report", report_, "HTML", "a page with a plot and a table of the points"),
               flag("plan", plan_only_, "print a command line for each point, and run none"),
               {"collect", "ROWS", "take the rows from the output of those lines", collect,
                [] { return ""; }, true}});
}

void Sweep::load() {
  constexpr int kMostFrames = 16;
  std::vector<std::string> paths = input_.paths;
  if (!clean_path_.empty()) paths.push_back(clean_path_);
  frames_ = load_frames(paths, input_.options, kMostFrames);
  expect_one_size(frames_);
  Frames all = frames_;
  if (!mask_path_.empty()) {
    if (clean_path_.empty()) throw Error("--mask: needs --reference");
    mask_ = load_mask(mask_path_, frames_.front().size());
    all.push_back(to_frame(mask_->picture()));
  }
  burst_ = digest_of(all);
  if (!clean_path_.empty()) {
    clean_ = std::move(frames_.back());
    frames_.pop_back();
  }
  plan_ = make_plan(operation_, axes_, size_of(frames_.front()),
                    static_cast<int>(frames_.size()) - (clean_ ? 0 : 1));
}

std::string Sweep::line_of(const Point& point) const {
  std::string line = "zavri sweep " + operation_;
  for (const std::string& path : input_.paths) line += ' ' + quoted(path);
  const auto add = [&line](const char* name, const std::string& text) {
    if (!text.empty()) line += std::string(" --") + name + ' ' + quoted(text);
  };
  const auto number = [](int value) { return value == 0 ? "" : std::to_string(value); };
  const RawOptions& raw = input_.options.raw;
  add("size", raw.size);
  add("pix", raw.pixel);
  add("stride", number(raw.stride));
  add("scanlines", number(raw.scanlines));
  const std::optional<FrameRange>& frames = input_.options.frames;
  if (frames) add(frames->first == frames->last ? "frame" : "frames", frames->text());
  add("reference", clean_path_);
  add("mask", mask_path_);
  return line + options_of(point) + " -o -";
}

int Sweep::print_plan() const {
  std::string lines;
  for (const Point& point : plan_.points) lines += line_of(point) + '\n';
  print_text(lines);
  return kDone;
}

// Reads the rows of an output that is there already.
std::vector<Report> Sweep::known_rows(const Console& console) const {
  const bool is_there = !output_.empty() && output_ != "-" && std::filesystem::exists(output_);
  if (!is_there || console.force) return std::vector<Report>(plan_.points.size());
  return rows_by_point(read_rows(output_), burst_, plan_, "-o " + output_);
}

std::vector<Report> Sweep::collect() const {
  std::vector<Report> all;
  for (const std::string& path : collected_) {
    const std::vector<Report> rows = read_rows(path);
    all.insert(all.end(), rows.begin(), rows.end());
  }
  std::vector<Report> rows = rows_by_point(all, burst_, plan_, "--collect");
  const auto missing = std::find(rows.begin(), rows.end(), Report());
  if (missing != rows.end()) {
    const Point& point = plan_.points[static_cast<size_t>(missing - rows.begin())];
    throw Error("--collect: " + std::to_string(std::count(missing, rows.end(), Report())) + " of " +
                std::to_string(rows.size()) + " rows are missing; the first is of " +
                line_of(point));
  }
  if (!output_.empty()) RowFile(output_, rows);
  return rows;
}

std::vector<Report> Sweep::run_here(Console& console) {
  std::vector<Report> rows = known_rows(console);
  std::vector<Report> known;
  std::copy_if(rows.begin(), rows.end(), std::back_inserter(known),
               [](const Report& row) { return !row.is_null(); });
  std::optional<RowFile> file;
  if (!output_.empty()) file.emplace(output_, known);
  if (known.size() == rows.size()) return rows;
  Judge judge = clean_ ? Judge(frames_, *clean_, mask_ ? &*mask_ : nullptr) : Judge(frames_);
  Progress progress("sweep", rows.size() - known.size(), !console.quiet);
  run_points(operation_, plan_, burst_, judge, rows, progress, [&](const Report& row) {
    if (file) file->add(row);
  });
  // A sweep that went on has its rows in the order of the plan, too.
  if (!known.empty()) RowFile(output_, rows);
  return rows;
}

int Sweep::run(Console& console) {
  if (!output_.empty()) {
    is_csv(output_);
    check_file(output_, true);
  }
  if (output_ == "-") console.give_stdout_away();
  if (!report_.empty()) prepare_page(report_, console);
  load();
  if (plan_only_) return print_plan();
  std::vector<Report> rows = collected_.empty() ? run_here(console) : collect();
  for (Report& row : rows) row.erase("burst");
  if (plan_.repeated > 0) {
    console.remark(std::to_string(plan_.repeated) +
                   " combinations do the same as others and were left out");
  }
  Report report{{"operation", operation_}, {"size", frames_.front().size()}};
  if (!output_.empty()) report["output"] = output_;
  report["points"] = rows;
  if (!report_.empty()) {
    ReportPage page = page_of(report);
    page.title = "Sweep of zavri " + operation_;
    write_page(page, report_, console);
    report["report"] = report_;
  }
  console.print(report);
  return kDone;
}

Sweep g_sweep("sweep", "score an operation with many settings",
              "sweep denoise burst/frame?_*.nv12 --reference burst/clean_*.nv12 --mode "
              "whole,chroma --thresh 4:40:4 -o rows.csv");

}  // namespace
}  // namespace zavri::tools
