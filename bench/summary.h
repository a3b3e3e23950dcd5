#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

namespace zavri::bench {

// What is expected of a group, as ratios of figures of one run; 0 expects nothing.
struct Expectation {
  double floor16 = 0;        // speed-up over the plain rule, with 16-byte vectors
  double floor32 = 0;        // and with 32-byte ones
  double most_of_touch = 0;  // longest time over a loop that only touches the same bytes
  double most_seconds = 0;   // longest time as such
  double most_of_peer = 0;   // longest time over another library that does the same
  bool strict = false;       // floors are met without allowance
};

// The console's lines, and at the end a table of ratios. Benchmarks are named group/variant; the
// variants "plain", "touch" and "peer" are what the others of their group are compared with.
class Summary : public benchmark::ConsoleReporter {
 public:
  static void expect(const std::string& group, const Expectation& expectation);

  void ReportRuns(const std::vector<Run>& reports) override;
  void Finalize() override;

 private:
  std::map<std::string, std::vector<double>> seconds_;  // by name, one a repetition
};

}  // namespace zavri::bench
