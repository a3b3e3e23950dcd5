#pragma once

#include <algorithm>
#include <string>
#include <vector>

// What a figure of speed depends on besides the code, as far as the system shows it.
namespace zavri::device {

// Of clocks that were read, in megahertz; 0 where none is shown.
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

// `root` stands for /sys.
class Conditions {
 public:
  explicit Conditions(std::string root = "/sys") : root_(std::move(root)) {}

  // Processors by their highest clock, the fastest first; 0 counts where none is shown.
  std::vector<int> fastest_first(std::vector<int> processors) const;

  // The highest clock at which one of them runs now; 0 where none is shown.
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
