#pragma once

#include <algorithm>
#include <string>
#include <vector>

// These classes read what a figure of speed depends on besides the code, as far as the system shows
// it.
namespace zavri::device {

// Holds the lowest and the highest of the clocks that were read, in megahertz; both are 0 where the
// system shows none.
struct ClockRange {
  int least = 0;
  int most = 0;

  void add(int megahertz) {
    least = most == 0 ? megahertz : std::min(least, megahertz);
    most = std::max(most, megahertz);
  }
  // Clocks that are read differ by a little even when nothing changes them.
  bool changed() const { return least < 0.97 * most; }
};

// Reads the files of /sys; `root` stands for that folder.
class Conditions {
 public:
  explicit Conditions(std::string root = "/sys") : root_(std::move(root)) {}

  // Orders processors by their highest clock, the fastest first; one that shows none counts as 0.
  std::vector<int> fastest_first(std::vector<int> processors) const;

  // Returns the highest clock at which one of the processors runs now, or 0 where none is shown.
  int megahertz(const std::vector<int>& processors) const;

  struct Temperature {
    std::string zone;
    double degrees;  // Celsius
  };
  std::vector<Temperature> temperatures() const;

 private:
  long clock_file(int processor, const char* name) const;

  std::string root_;
};

}  // namespace zavri::device
