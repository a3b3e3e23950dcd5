#pragma once

#include <stdexcept>
#include <string>

namespace zavri::tools {

// The program's exit status is one of these.
enum Status : int {
  kDone = 0,
  kBelowLimit = 1,
  kBadInput = 2,
  kRefused = 3,  // by the library
};

// An error ends the program with one line on stderr. The text names what is wrong and what would be
// right.
class Error : public std::runtime_error {
 public:
  explicit Error(const std::string& text, Status with_status = kBadInput)
      : std::runtime_error(text), status(with_status) {}

  Status status;
};

}  // namespace zavri::tools
