#pragma once

#include <algorithm>
#include <chrono>
#include <vector>

// Every program times repeated runs by these functions.
namespace zavri {

// Returns how many seconds work() takes.
template <class Work>
double seconds_of(Work work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
  return taken.count();
}

// Returns the value in the middle, the upper one of two; there is at least one.
inline double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

// Returns the median of the seconds that work() takes; prepare() goes before each run and does not
// count.
template <class Prepare, class Work>
double median_seconds(int runs, Prepare prepare, Work work) {
  std::vector<double> seconds;
  for (int run = 0; run < runs; ++run) {
    prepare();
    seconds.push_back(seconds_of(work));
  }
  return median(seconds);
}

}  // namespace zavri
