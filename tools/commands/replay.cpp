#include "tools/command_line.h"
#include "tools/error.h"
#include "tools/operations/chain.h"
#include "tools/operations/dump.h"

namespace zavri::tools {
namespace {

class Replay : public Command {
 public:
  using Command::Command;

  void declare(Options& options) override {
    input_.declare_paths(
        options,
        "dumps in any folder: the program shows each to the library where that expects it, in "
        "/data/misc/camera, and only for reading. A file 0.yuv is a fixed dump");
    input_.declare_raw(options);
    output_.declare(options);
    const auto add_step = [this](const std::string& text) {
      steps_.push_back(parse_step(text));
      return true;
    };
    const std::string what = "next step, one of " + step_usages() + "; settings may be named, too";
    const auto nothing = [] { return ""; };
    options.add({{"then", "STEP", what, add_step, nothing, true}, meta_.setting()});
  }

  int run(Console& console) override {
    output_.prepare(console);
    Frames frames;
    for (const std::string& path : input_.paths) {
      frames.push_back(load_dump(path, input_.options.raw, meta_));
    }
    const auto dumps = static_cast<int>(frames.size());
    if (check_steps(steps_, size_of(frames.front()), dumps) > 1) {
      throw Error("IN: " + std::to_string(dumps) +
                  " dumps; --then denoise or --then compose makes one frame of them");
    }
    Report table = Report::array();
    for (const Step& step : steps_) {
      console.progress(step.text);
      StepResult result = run_step(step, frames);
      for (const std::string& remark : result.remarks) console.remark(step.text + ": " + remark);
      frames = std::move(result.frames);
      table.push_back({{"step", step.text},
                       {"frames", frames.size()},
                       {"size", frames.front().size()},
                       {"milliseconds", decimals(1e3 * result.seconds, 2)}});
    }
    save(frames.front(), output_.path);
    Report report{{"output", output_.path}, {"size", frames.front().size()}, {"dumps", dumps}};
    if (!table.empty()) report["steps"] = table;
    console.print(report);
    return kDone;
  }

 private:
  Input input_;
  Output output_;
  DumpMeta meta_;
  std::vector<Step> steps_;
};

Replay g_replay("replay",
                "load dumps through the library and run operations on them, one after the other",
                "replay zvcfixedyuvprefix_4000x3000_?_suffix.yuv --then denoise:20,30 --then "
                "chroma:19 -o out.png");

}  // namespace
}  // namespace zavri::tools
