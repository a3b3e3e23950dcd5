#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace zavri::testing {

struct LogLine {
  int priority;
  std::string tag;
  std::string text;

  friend bool operator==(const LogLine& a, const LogLine& b) {
    return a.priority == b.priority && a.tag == b.tag && a.text == b.text;
  }
};

std::ostream& operator<<(std::ostream& out, const LogLine& line);

// The test executables define __android_log_print: every line of the library ends here.
// Returns the lines since the last call, in order; any thread may log meanwhile.
std::vector<LogLine> take_log();

}  // namespace zavri::testing
