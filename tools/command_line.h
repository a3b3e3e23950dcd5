#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tools/console.h"
#include "tools/images/files.h"
#include "tools/operations/setting.h"
#include "tools/sensor/noise.h"

namespace CLI {
class App;
}

namespace zavri::tools {

// Holds what one command takes. The parser behind it is known to command_line.cpp alone.
class Options {
 public:
  explicit Options(CLI::App& app) : app_(app) {}

  // Adds the option --NAME, or -N for a name of one letter.
  void add(const Setting& setting, bool required = false);
  void add(const Settings& settings);
  // These add what stands without a name: one text, or one and more.
  void argument(const char* name, std::string& value, const char* what, bool required = true);
  void arguments(const char* name, std::vector<std::string>& values, const char* what,
                 bool required = true);

 private:
  CLI::App& app_;
};

// Each command of the program is an object of its own in a file of commands/, and puts itself into
// the program's list by being made: nothing else knows it.
class Command {
 public:
  Command(const char* name, const char* what, const char* example);
  virtual ~Command() = default;

  virtual void declare(Options& options) = 0;
  // Returns the exit status.
  virtual int run(Console& console) = 0;

  const char* name() const { return name_; }
  const char* what() const { return what_; }
  const char* example() const { return example_; }

  // Returns all commands by their names in ascending order.
  static std::vector<Command*> all();

 private:
  const char* name_;
  const char* what_;
  const char* example_;
  Command* next_;
};

// Runs the command that the arguments name.
int run_command_line(int argc, char** argv);

// Several commands have the options that follow.

// Says which files a command reads, and how.
struct Input {
  std::vector<std::string> paths;
  InputOptions options;

  void declare(Options& settings, const char* what, bool required = true);
  // These declare two parts of an input: the paths, and --size and the others of raw frames.
  void declare_paths(Options& settings, const char* what, bool required = true);
  void declare_raw(Options& settings);
};

// Prepares an output before the work: `check` throws unless the file can be written and nothing is
// overwritten, and a file that goes to stdout keeps reports away from there.
void prepare_output(const std::string& path, Console& console,
                    void (*check)(const std::string& path, bool force));

// Says where a command writes its frame.
struct Output {
  std::string path;

  void declare(Options& settings);
  // Does prepare_output() with check_output().
  void prepare(Console& console) const;
};

void declare_sensor(Options& options, Sensor& sensor, int64_t& seed);

}  // namespace zavri::tools
