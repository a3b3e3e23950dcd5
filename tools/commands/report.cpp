#include <algorithm>
#include <filesystem>
#include <optional>

#include "tools/command_line.h"
#include "tools/commands/pages.h"
#include "tools/error.h"
#include "tools/log_lines.h"
#include "tools/report/results_page.h"
#include "tools/report/run_page.h"
#include "tools/sensor/burst.h"
#include "tools/tuning/rows.h"

namespace zavri::tools {
namespace {

namespace fs = std::filesystem;

class MakeReport : public Command {
 public:
  using Command::Command;

  void declare(Options& options) override;
  int run(Console& console) override;

 private:
  // Of what a command found out: rows of a sweep, or its report as JSON.
  bool has_results() const;
  ReportPage results_page() const;
  // Takes the frames and the truth of a burst's folder for files that were named one by one.
  void look_into_folder();
  ReportPage run_page();

  Input input_;
  std::string clean_;
  std::string mask_;
  std::string output_;
  Denoise denoise_;
};

void MakeReport::declare(Options& options) {
  input_.declare(options,
                 "the folder of a burst, its frames, or results: .json as --json prints them, or "
                 "rows in .jsonl");
  options.add(word("o", output_, "PAGE.html", "the page, one file that needs no other"), true);
  options.add({word("reference", clean_, "CLEAN", "the clean frame, where there is one"),
               word("mask", mask_, "MASK", "picture that is white where something moves")});
  options.add(denoise_.settings());
}

void MakeReport::look_into_folder() {
  const std::string folder = input_.paths.front();
  std::vector<std::string> frames;
  for (const std::string& path : burst_files(folder)) {
    const std::string name = fs::path(path).filename();
    if (name.rfind("frame", 0) == 0) frames.push_back(path);
    if (name.rfind("clean", 0) == 0 && clean_.empty()) clean_ = path;
    if (name.rfind("mask", 0) == 0 && mask_.empty()) mask_ = path;
  }
  if (frames.empty()) throw Error(folder + ": has no frames of a burst, frame0_.. and on");
  std::sort(frames.begin(), frames.end());
  frames.resize(std::min<size_t>(frames.size(), static_cast<size_t>(denoise_.takes().most)));
  input_.paths = frames;
}

bool MakeReport::has_results() const {
  const std::string extension = fs::path(input_.paths.front()).extension();
  return extension == ".json" || extension == ".jsonl" || extension == ".csv";
}

ReportPage MakeReport::results_page() const {
  const std::string& path = input_.paths.front();
  if (input_.paths.size() > 1) throw Error(path + ": results make a page alone");
  Report results;
  if (fs::path(path).extension() == ".json") {
    const Bytes bytes = read_file(path);
    results = Report::parse(bytes.begin(), bytes.end(), nullptr, false);
    if (!results.is_object()) throw Error(path + ": is no report as --json prints it");
  } else {
    results["rows"] = read_rows(path);
  }
  ReportPage page = page_of(results);
  page.title = "Results of " + path;
  return page;
}

ReportPage MakeReport::run_page() {
  if (input_.paths.size() == 1 && fs::is_directory(input_.paths.front())) look_into_folder();
  if (!mask_.empty() && clean_.empty()) throw Error("--mask: needs --reference");
  std::vector<std::string> paths = input_.paths;
  if (!clean_.empty()) paths.push_back(clean_);
  Frames frames = load_frames(paths, input_.options, denoise_.takes().most);
  std::optional<Frame> clean;
  if (!clean_.empty()) {
    clean = std::move(frames.back());
    frames.pop_back();
    expect_one_size({frames.front(), *clean});
  }
  std::optional<Mask> mask;
  if (!mask_.empty()) mask = load_mask(mask_, frames.front().size());
  LogKeeper log;
  const Result result = denoise_.run(frames);
  std::vector<std::string> lines = log.take();
  ReportPage page =
      page_of({frames, denoise_, result, clean ? &*clean : nullptr, mask ? &*mask : nullptr});
  page.log_lines = std::move(lines);
  return page;
}

int MakeReport::run(Console& console) {
  prepare_page(output_, console);
  const ReportPage page = has_results() ? results_page() : run_page();
  write_page(page, output_, console);
  for (const std::string& remark : page.remarks) console.remark(remark);
  console.print({{"report", output_},
                 {"pictures", page.comparisons.size()},
                 {"plots", page.plots.size()},
                 {"tables", page.tables.size()}});
  return kDone;
}

MakeReport g_report("report", "a page about one denoise or about results: pictures, numbers, plots",
                    "report burst --thresh 28 --thresh-luma 40 -o report.html");

}  // namespace
}  // namespace zavri::tools
