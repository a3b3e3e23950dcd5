#include "tools/command_line.h"

#include <zavricustpro/base.h>

#include <CLI/CLI.hpp>
#include <algorithm>

#include "tools/error.h"
#include "tools/log_lines.h"

namespace zavri::tools {
namespace {

// The list is empty before any command is made, since its first value is a constant.
Command* g_last_command = nullptr;

std::string names_of(const std::vector<Command*>& commands) {
  std::vector<std::string> names;
  names.reserve(commands.size());
  for (const Command* command : commands) names.push_back(command->name());
  return joined(names);
}

void print_help() {
  std::string text =
      "Camera post-processing on files: noisy bursts, the library's operations, comparison.\n"
      "Usage: zavri COMMAND [options]; zavri COMMAND --help tells more\n\n";
  for (const Command* command : Command::all()) {
    std::string name = command->name();
    name.resize(10, ' ');
    text += "  " + name + command->what() + '\n';
  }
  print_text(text);
}

Command& command_named(const std::string& name) {
  const std::vector<Command*> all = Command::all();
  for (Command* command : all) {
    if (command->name() == name) return *command;
  }
  if (name.empty()) throw Error("a command is needed: " + names_of(all));
  if (name[0] == '-') {
    throw Error(name + ": no such option; a command comes first: " + names_of(all));
  }
  throw Error(name + ": no such command; there are " + names_of(all));
}

void add_console_options(CLI::App& app, Console& console) {
  app.add_flag("--json", console.json, "print results as JSON");
  app.add_flag("--quiet", console.quiet, "print errors only");
  app.add_flag("--verbose", console.verbose, "show the library's log lines");
  app.add_flag("--force", console.force, "overwrite existing files");
}

int parse_and_run(Command& command, int argc, char** argv) {
  CLI::App app(command.what(), std::string("zavri ") + command.name());
  app.footer(std::string("Example: zavri ") + command.example());
  app.allow_extras();
  Options options(app);
  command.declare(options);
  Console console;
  add_console_options(app, console);
  try {
    app.parse(argc - 1, argv + 1);
  } catch (const CLI::CallForHelp&) {
    print_text(app.help());
    return kDone;
  } catch (const CLI::ArgumentMismatch& error) {
    const std::string what = error.what();
    throw Error(what.substr(0, what.find(':')) + ": takes one value");
  } catch (const CLI::ParseError& error) {
    throw Error(error.what());
  }
  if (!app.remaining().empty()) {
    throw Error(app.remaining().front() + ": not expected here; see zavri " + command.name() +
                " --help");
  }
  show_log_lines(console.verbose);
  console.command = "zavri";
  for (int k = 1; k < argc; ++k) console.command += ' ' + quoted(argv[k]);
  return command.run(console);
}

}  // namespace

void Options::add(const Setting& setting, bool required) {
  const std::string option = (setting.name.size() == 1 ? "-" : "--") + setting.name;
  if (setting.is_flag()) {
    app_.add_flag_callback(
        option, [setting] { setting.set("true"); }, setting.what);
    return;
  }
  // The parser gives a vector for one value and for a repeated option alike.
  const auto set = [setting](const std::vector<std::string>& texts) {
    for (const std::string& text : texts) setting.set(text);
  };
  const std::string today = setting.text();
  const std::string what = today.empty() ? setting.what : setting.what + " [" + today + ']';
  CLI::Option* const added = app_.add_option_function<std::vector<std::string>>(option, set, what);
  added->type_name(setting.form)->required(required)->allow_extra_args(false);
  if (!setting.repeats) added->expected(1);
}

void Options::add(const Settings& settings) {
  for (const Setting& setting : settings) add(setting);
}

void Options::argument(const char* name, std::string& value, const char* what, bool required) {
  app_.add_option(name, value, what)->required(required)->type_name("");
}

void Options::arguments(const char* name, std::vector<std::string>& values, const char* what,
                        bool required) {
  app_.add_option(name, values, what)->required(required)->type_name("");
}

Command::Command(const char* name, const char* what, const char* example)
    : name_(name), what_(what), example_(example), next_(g_last_command) {
  g_last_command = this;
}

std::vector<Command*> Command::all() {
  std::vector<Command*> commands;
  for (Command* command = g_last_command; command != nullptr; command = command->next_) {
    commands.push_back(command);
  }
  std::sort(commands.begin(), commands.end(),
            [](const Command* a, const Command* b) { return std::string(a->name()) < b->name(); });
  return commands;
}

int run_command_line(int argc, char** argv) {
  const std::string first = argc > 1 ? argv[1] : "";
  if (first == "--help" || first == "-h") {
    print_help();
    return kDone;
  }
  if (first == "--version") {
    print_text(ZAVRI_VERSION "\n");
    return kDone;
  }
  return parse_and_run(command_named(first), argc, argv);
}

void Input::declare(Options& settings, const char* what, bool required) {
  declare_paths(settings, what, required);
  declare_raw(settings);
  const auto set = [this](std::optional<int64_t> first, std::optional<int64_t> last) {
    if (!first || !last || *last < *first) return false;
    if (options.frames) throw Error("--frames: is given once, or --frame");
    options.frames = FrameRange{static_cast<int>(*first), static_cast<int>(*last)};
    return true;
  };
  const auto index = [](const std::string& text) { return parse_whole(text, 0, INT32_MAX); };
  const auto set_frame = [=](const std::string& text) { return set(index(text), index(text)); };
  const auto set_frames = [=](const std::string& text) {
    const std::vector<std::string> ends = split(text, ':');
    return ends.size() == 2 && set(index(ends[0]), index(ends[1]));
  };
  const auto none = [] { return ""; };
  settings.add({{"frame", "N", "of a stream, counted from 0", set_frame, none},
                {"frames", "A:B", "of a stream, such as 0:3, B included", set_frames, none}});
}

void Input::declare_paths(Options& settings, const char* what, bool required) {
  settings.arguments("IN", paths, what, required);
}

void Input::declare_raw(Options& settings) {
  constexpr int kMostPadded = 1 << 20;
  settings.add({word("size", options.raw.size, "WxH", "of raw input, unless its name carries it"),
                word("pix", options.raw.pixel, "NAME",
                     "nv12, nv21, i420, yv12 or another of FFmpeg's pixel formats of raw input, "
                     "unless the extension says it"),
                or_auto(whole_number("stride", options.raw.stride, 2, kMostPadded,
                                     "bytes from row to row of raw input"),
                        options.raw.stride),
                or_auto(whole_number("scanlines", options.raw.scanlines, 2, kMostPadded,
                                     "luma rows of raw input, with padding"),
                        options.raw.scanlines)});
}

void Output::declare(Options& settings) {
  settings.add(word("o", path, "OUT", "result, by its extension; - for Y4M on stdout"), true);
}

void prepare_output(const std::string& path, Console& console,
                    void (*check)(const std::string& path, bool force)) {
  check(path, console.force);
  if (path == "-") console.give_stdout_away();
}

void Output::prepare(Console& console) const { prepare_output(path, console, check_output); }

void declare_sensor(Options& options, Sensor& sensor, int64_t& seed) {
  options.add(
      {real_number("sensor-gain", sensor.gain, 0.1, 1000, "of the simulated sensor, ISO over 100"),
       whole_number("seed", seed, 0, INT64_MAX, "of the noise")});
}

}  // namespace zavri::tools
