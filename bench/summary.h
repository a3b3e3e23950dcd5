#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

namespace zavri::bench {

// Says what is expected of a group, as ratios of figures of one run; 0 expects nothing.
struct Expectation {
  double floor16 = 0;        // least speed-up over the plain rule, with 16-byte vectors
  double floor32 = 0;        // least speed-up over the plain rule, with 32-byte vectors
  double most_of_touch = 0;  // longest time, divided by that of a loop that only touches the bytes
  double most_seconds = 0;   // longest time in seconds
  double most_of_peer = 0;   // longest time, divided by that of another library for the same work
  bool strict = false;       // floors are met without allowance
};

// Prints the console's lines, and at the end a table of ratios. Benchmarks are named group/variant;
// the variants "plain", "touch" and "peer" are what the others of their group are compared with.
class Summary : public benchmark::ConsoleReporter {
 public:
  static void expect(const std::string& group, const Expectation& expectation);

  void ReportRuns(const std::vector<Run>& reports) override;
  void Finalize() override;

 private:
  std::map<std::string, std::vector<double>>
      seconds_;  // the key is a name, each repetition one value
};

}  // namespace zavri::bench
