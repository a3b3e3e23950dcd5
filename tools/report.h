#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace zavri::tools {

// What a command found out: scalars and tables (arrays of objects with the same keys).
using Report = nlohmann::ordered_json;

// A number with so many decimals; infinity as null.
Report decimals(double value, int digits);

// Options that every command has.
struct Console {
  bool json = false;
  bool quiet = false;
  bool verbose = false;
  bool force = false;

  // The report on stdout, for people or as JSON.
  void print(const Report& report) const;
  // A message on stderr; progress only where somebody watches a terminal.
  void say(const std::string& text) const;
  void progress(const std::string& text) const;
};

}  // namespace zavri::tools
