#include <algorithm>
#include <chrono>
#include <cstdio>

#include "bench/repeated_runs.h"
#include "device/commands.h"
#include "device/conditions.h"
#include "device/processors.h"
#include "device/workload.h"

namespace zavri::device {
namespace {

constexpr int kLeastRuns = 3;

struct Figure {
  double milliseconds;  // of one run, the median
  size_t runs;
};

class Bench {
 public:
  Bench(const BenchOptions& options, std::vector<Operation> operations);
  void run();

 private:
  using Clock = std::chrono::steady_clock;

  Figure measure(const Operation& operation, int threads);
  void print_head() const;
  void print_end() const;
  void print_json(const Operation& operation, int threads, const Figure& figure) const;
  double per_megapixel(const Figure& figure) const {
    return figure.milliseconds * 1e6 / options_.width / options_.height;
  }

  const BenchOptions options_;
  const std::vector<Operation> operations_;
  const Conditions conditions_;
  const std::vector<Conditions::Temperature> temperatures_ = conditions_.temperatures();
  std::vector<int> processors_;  // the fastest, as many as threads may run
  double share_ = 0;             // seconds for one measurement
  ClockRange clock_;
  std::vector<double> memcpy_;  // milliseconds by threads - 1
};

Bench::Bench(const BenchOptions& options, std::vector<Operation> operations)
    : options_(options), operations_(std::move(operations)) {
  processors_ = conditions_.fastest_first(processors_here());
  processors_.resize(std::min<size_t>(processors_.size(), options.threads));
  size_t measurements = 0;
  for (const Operation& operation : operations_) {
    measurements += operation.takes_threads ? processors_.size() : 1;
  }
  share_ = options.seconds / static_cast<double>(measurements);
}

// Times runs until the share of time is used up. One run before them lets clocks rise and fills
// caches and tables.
Figure Bench::measure(const Operation& operation, int threads) {
  const std::vector<int> used(processors_.begin(), processors_.begin() + threads);
  use_processors(used);
  const auto end = Clock::now() + std::chrono::duration<double>(share_);
  std::vector<double> times;
  for (int i = 0; i <= kLeastRuns || Clock::now() < end; ++i) {
    operation.prepare();
    const double seconds = seconds_of([&] { operation.run(threads); });
    if (i == 0) continue;
    times.push_back(seconds);
    clock_.add(conditions_.megahertz(used));
  }
  return {1e3 * median(times), times.size()};
}

void Bench::print_head() const {
  printf(
      "milliseconds per megapixel of %ux%u, medians; in brackets: times memcpy\n"
      "N threads run on the N fastest processors; the library's own 4 threads share these\n\n%-32s",
      options_.width, options_.height, "threads");
  for (size_t i = 1; i <= processors_.size(); ++i) printf("%17zu", i);
  putchar('\n');
}

void Bench::print_json(const Operation& operation, int threads, const Figure& figure) const {
  printf(
      "{\"operation\": \"%s\", \"threads\": %d, \"ms_per_megapixel\": %.4f, "
      "\"times_memcpy\": %.3f, \"runs\": %zu}\n",
      operation.name.c_str(), threads, per_megapixel(figure),
      figure.milliseconds / memcpy_[threads - 1], figure.runs);
}

void Bench::print_end() const {
  const std::vector<Conditions::Temperature> after = conditions_.temperatures();
  const size_t zones = std::min(temperatures_.size(), after.size());
  if (options_.json) {
    printf(
        "{\"size\": \"%ux%u\", \"mhz_least\": %d, \"mhz_most\": %d, \"clock_changed\": %s, "
        "\"temperatures\": [",
        options_.width, options_.height, clock_.least, clock_.most,
        clock_.changed() ? "true" : "false");
    for (size_t i = 0; i < zones; ++i) {
      printf("%s{\"zone\": \"%s\", \"before\": %.1f, \"after\": %.1f}", i == 0 ? "" : ", ",
             after[i].zone.c_str(), temperatures_[i].degrees, after[i].degrees);
    }
    puts("]}");
  } else if (clock_.most == 0) {
    puts("\nclock: not shown by the system");
  } else {
    printf("\nclock: %d to %d MHz\n", clock_.least, clock_.most);
  }
  for (size_t i = 0; i < zones && !options_.json; ++i) {
    printf("temperature of %s: %.1f to %.1f C\n", after[i].zone.c_str(), temperatures_[i].degrees,
           after[i].degrees);
  }
  if (clock_.changed()) {
    fprintf(stderr,
            "zavri-device: the clock changed during the run, between %d and %d MHz: "
            "compare its figures with no others\n",
            clock_.least, clock_.most);
  }
}

void Bench::run() {
  if (!options_.json) print_head();
  for (const Operation& operation : operations_) {
    if (!options_.json) printf("%-32s", operation.name.c_str());
    const size_t most = operation.takes_threads ? processors_.size() : 1;
    for (size_t threads = 1; threads <= most; ++threads) {
      const Figure figure = measure(operation, static_cast<int>(threads));
      if (memcpy_.size() < threads) memcpy_.push_back(figure.milliseconds);
      if (options_.json) {
        print_json(operation, static_cast<int>(threads), figure);
      } else {
        printf(" %8.3f (%5.2f)", per_megapixel(figure), figure.milliseconds / memcpy_[threads - 1]);
      }
      fflush(stdout);
    }
    if (!options_.json) putchar('\n');
  }
  print_end();
}

}  // namespace

int bench(const BenchOptions& options) {
  Bench(options, all_operations(options.width, options.height)).run();
  return 0;
}

}  // namespace zavri::device
