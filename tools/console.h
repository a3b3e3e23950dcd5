#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace zavri::tools {

// A report tells what a command found out: scalars, lists, and tables, which are arrays of objects
// with the same keys. Keys are lower-case words with underscores, which people read as blanks.
using Report = nlohmann::ordered_json;

// Rounds a number to so many decimals; JSON has no infinity, which becomes the text "inf".
Report decimals(double value, int digits);

// Returns a table as comma-separated values, with its keys in the first line.
std::string csv_text(const Report& rows);

// Returns the number or the truth value that the text is, or the text.
Report value_of(const std::string& text);

// Writes results to stdout, and remarks and progress to stderr. The first four members are options
// of every command.
class Console {
 public:
  bool json = false;
  bool quiet = false;
  bool verbose = false;
  bool force = false;
  bool csv = false;     // of commands whose report is one table
  std::string command;  // as it was typed, in a form that a shell takes

  // Leaves stdout to a command's output, so that no report is printed.
  void give_stdout_away() { stdout_is_output_ = true; }

  // Writes one line to stderr, or an entry of the list "remarks" of a report in JSON.
  void remark(const std::string& text);
  // Writes a line where somebody watches a terminal.
  void progress(const std::string& text) const;
  // Prints a report. Throws an Error where stdout takes no more.
  void print(Report report) const;

 private:
  bool stdout_is_output_ = false;
  std::vector<std::string> remarks_;
};

// Writes all of the text to stdout, or throws an Error.
void print_text(const std::string& text);

}  // namespace zavri::tools
