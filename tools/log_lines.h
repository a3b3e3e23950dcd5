#pragma once

#include <string>
#include <vector>

namespace zavri::tools {

// The program defines the Android log's function, so that the library's lines go to stderr, and
// only when somebody wants to see them.
void show_log_lines(bool show);

// Keeps lines as well, from construction to take(). There is one at a time.
class LogKeeper {
 public:
  LogKeeper();
  ~LogKeeper();
  LogKeeper(const LogKeeper&) = delete;
  LogKeeper& operator=(const LogKeeper&) = delete;

  std::vector<std::string> take();
};

}  // namespace zavri::tools
