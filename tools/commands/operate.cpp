#include "tools/commands/operate.h"

#include "tools/error.h"

namespace zavri::tools {
namespace {

Report settings_of(Operation& operation) {
  Report values;
  for (const Setting& setting : operation.settings()) {
    const std::string text = setting.text();
    if (!text.empty()) values[key_of(setting.name)] = value_of(text);
  }
  return values;
}

}  // namespace

void OperateCommand::declare(Options& options) {
  const auto [least, most] = operation().takes();
  const std::string what = most == 1 ? "frame"
                                     : "frames, " + std::to_string(least) +
                                           (least == most ? "" : " to " + std::to_string(most));
  input_.declare(options, what.c_str());
  output_.declare(options);
  options.add(operation().settings());
}

int OperateCommand::run(Console& console) {
  output_.prepare(console);
  const Frames frames = load_frames(input_.paths, input_.options, operation().takes().most);
  const Result result = operation().run(frames);
  save(result.frame, output_.path);
  for (const std::string& remark : result.remarks) console.remark(remark);

  Report report{{"output", output_.path},
                {"size", result.frame.size()},
                {"frames", frames.size()},
                {"settings", settings_of(operation())}};
  for (const auto& [name, number] : result.figures) report[name] = decimals(number, 2);
  report["milliseconds"] = decimals(1e3 * result.seconds, 2);
  console.print(report);
  return kDone;
}

}  // namespace zavri::tools
