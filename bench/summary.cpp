#include "bench/summary.h"

#include <cstdio>

#include "bench/repeated_runs.h"

namespace zavri::bench {
namespace {

std::map<std::string, Expectation>& expectations() {
  static std::map<std::string, Expectation> all;
  return all;
}

// The map orders groups and variants by name.
using Groups = std::map<std::string, std::map<std::string, double>>;

const char* verdict(bool met) { return met ? "ok" : "MISSED"; }

// A floor that is not strict counts as met at 80 % of it, for the noise of a shared machine. Where
// the plain rule's branches are easy to predict no kernel reaches its floor: it counts as bound by
// memory if it takes at most 1.6 times as long as touching the bytes.
const char* floor_verdict(double speed_up, double floor, bool strict, double over_touch) {
  constexpr double kNoise = 0.8;
  constexpr double kMemoryBound = 1.6;
  if (strict) return verdict(speed_up >= floor);
  if (speed_up >= kNoise * floor) return "ok";
  return over_touch > 0 && over_touch <= kMemoryBound ? "memory bound" : "MISSED";
}

void print_line(const std::string& group, const std::string& variant, double time,
                const std::map<std::string, double>& variants, const Expectation& expectation) {
  std::printf("%-34s %-9s %10.1f us", group.c_str(), variant.c_str(), 1e6 * time);
  const auto ratio = [&](const char* to) {
    const auto found = variants.find(to);
    return found == variants.end() || variant == to ? 0.0 : found->second / time;
  };
  const double speed_up = ratio("plain");
  const double touch = ratio("touch");
  const double peer = ratio("peer");
  if (speed_up > 0) std::printf("  %6.2f x plain", speed_up);
  if (touch > 0) std::printf("  %6.2f x the time of touch", 1 / touch);
  if (peer > 0) std::printf("  %6.2f x the time of peer", 1 / peer);
  const double floor = variant == "vector16"   ? expectation.floor16
                       : variant == "vector32" ? expectation.floor32
                                               : 0;
  if (floor > 0)
    std::printf("  (at least %.1f x: %s)", floor,
                floor_verdict(speed_up, floor, expectation.strict, touch > 0 ? 1 / touch : 0));
  if (expectation.most_of_touch > 0 && touch > 0 && variant != "plain") {
    std::printf("  (at most %.1f: %s)", expectation.most_of_touch,
                verdict(1 / touch <= expectation.most_of_touch));
  }
  if (peer > 0 && expectation.most_of_peer > 0) {
    std::printf("  (at most %.1f: %s)", expectation.most_of_peer,
                verdict(1 / peer <= expectation.most_of_peer));
  }
  if (expectation.most_seconds > 0) {
    std::printf("  (at most %.0f us: %s)", 1e6 * expectation.most_seconds,
                verdict(time <= expectation.most_seconds));
  }
  std::printf("\n");
}

}  // namespace

void Summary::expect(const std::string& group, const Expectation& expectation) {
  expectations()[group] = expectation;
}

void Summary::ReportRuns(const std::vector<Run>& reports) {
  ConsoleReporter::ReportRuns(reports);
  for (const Run& run : reports) {
    if (run.run_type != Run::RT_Iteration || run.error_occurred) continue;
    const double seconds = run.real_accumulated_time / static_cast<double>(run.iterations);
    seconds_[run.run_name.function_name].push_back(seconds);
  }
}

void Summary::Finalize() {
  Groups groups;
  for (const auto& [name, seconds] : seconds_) {
    const size_t slash = name.rfind('/');
    groups[name.substr(0, slash)][name.substr(slash + 1)] = median(seconds);
  }
  std::printf("\nMedians and ratios of this run\n");
  for (const auto& [group, variants] : groups) {
    const auto found = expectations().find(group);
    const Expectation expectation = found == expectations().end() ? Expectation{} : found->second;
    for (const auto& [variant, time] : variants) {
      print_line(group, variant, time, variants, expectation);
    }
  }
}

}  // namespace zavri::bench
