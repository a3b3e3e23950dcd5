#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace zavri::tools {

// Tells on one line of a terminal how far long work is and how long it will still take. Where
// stderr is no terminal, or is not wanted, there is no line.
class Progress {
 public:
  Progress(std::string what, size_t total, bool wanted);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // Counts so many more of the total as done.
  void step(size_t count = 1);

 private:
  using Clock = std::chrono::steady_clock;

  std::string what_;
  size_t total_;
  bool shows_;
  size_t done_ = 0;
  Clock::time_point start_ = Clock::now();
  Clock::time_point told_ = {};
};

}  // namespace zavri::tools
