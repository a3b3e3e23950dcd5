#include <algorithm>

#include "tools/chain.h"
#include "tools/commands/commands.h"
#include "tools/dump.h"
#include "tools/error.h"
#include "tools/frame_io.h"

namespace zavri::tools {

int run_replay(const ReplayOptions& options, const Console& console) {
  check_extension(options.output);
  check_output(options.output, console.force);
  std::vector<Step> steps;
  for (const std::string& text : options.steps) steps.push_back(parse_step(text));
  const bool joins = std::any_of(steps.begin(), steps.end(), [](const Step& s) { return s.joins; });
  if (options.inputs.size() > 1 && !joins) {
    throw Error("IN: " + std::to_string(options.inputs.size()) +
                " dumps; --then denoise or --then compose makes one frame of them");
  }
  Frames frames;
  for (const std::string& input : options.inputs) {
    frames.push_back(load_dump(input, options.raw, options.meta));
  }

  Report table = Report::array();
  const auto add_row = [&](const std::string& step, double seconds) {
    table.push_back({{"step", step},
                     {"frames", frames.size()},
                     {"size", frames.front().size()},
                     {"milliseconds", decimals(1e3 * seconds, 2)}});
  };
  for (const Step& step : steps) {
    console.progress(step.text);
    StepResult result = run_step(step, frames);
    for (const std::string& remark : result.remarks) console.say(step.text + ": " + remark);
    frames = std::move(result.frames);
    add_row(step.text, result.seconds);
  }
  write_file(options.output, encode(frames.front(), options.output));
  // stdout may be the output itself.
  if (options.output != "-") {
    Report report{{"output", options.output},
                  {"size", frames.front().size()},
                  {"dumps", options.inputs.size()}};
    if (!table.empty()) report["steps"] = table;
    console.print(report);
  }
  return kDone;
}

}  // namespace zavri::tools
