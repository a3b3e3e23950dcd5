#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace zavri::tools {

// What a command found out: scalars, lists, and tables, which are arrays of objects with the same
// keys. Keys are lower-case words with underscores, which people read as blanks.
using Report = nlohmann::ordered_json;

// A number with so many decimals; JSON has no infinity, which is the text "inf".
Report decimals(double value, int digits);

// A number or a truth value where the text is one.
Report value_of(const std::string& text);

// Results on stdout; remarks and progress on stderr. The first four are options of every command.
class Console {
 public:
  bool json = false;
  bool quiet = false;
  bool verbose = false;
  bool force = false;
  bool csv = false;     // of commands whose report is one table
  std::string command;  // as it was typed, in a form that a shell takes

  // Leaves stdout to a command's output: no report is printed.
  void give_stdout_away() { stdout_is_output_ = true; }

  // One line on stderr, or an entry of the list "remarks" of a report in JSON.
  void remark(const std::string& text);
  // Seen only where somebody watches a terminal.
  void progress(const std::string& text) const;
  // Throws an Error where stdout takes no more.
  void print(Report report) const;

 private:
  bool stdout_is_output_ = false;
  std::vector<std::string> remarks_;
};

// Writes all of the text to stdout, or throws an Error.
void print_text(const std::string& text);

}  // namespace zavri::tools
