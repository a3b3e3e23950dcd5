// This program for the phone's shell tells how fast the library is there, what the vendor's scaler
// really does, and whether the library's answers are the known ones.
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>

#include "device/commands.h"

// The library's log lines are no part of the results.
extern "C" __attribute__((visibility("default"))) int __android_log_print(int, const char*,
                                                                          const char*, ...) {
  return 0;
}

namespace zavri::device {
namespace {

constexpr char kHelp[] =
    R"(usage: zavri-device bench [--size WxH] [--threads N] [--seconds S] [--json]
       zavri-device probe
       zavri-device verify

Runs the libmmcamera_zavricustpro.so and the libfastcvopt.so that the loader finds.

bench   prints milliseconds per megapixel of every operation, on 1 to 4 threads, and how often the
        time of memcpy that is; the clock of the processors, and temperatures where the system
        shows them
          --size WxH    of the frame (default 4000x3000)
          --threads N   the most threads that are tried, 1..4 (default 4)
          --seconds S   what all measurements may take together, about (default 10)
          --json        one JSON object a line instead of the table
probe   feeds pictures to the scaler and the Gaussian that are loaded, prints what they do, and
        whether a workstation's portable ones do the same
verify  runs the known answers; exit status 1 when one is wrong

Exit status 2 for wrong arguments.
)";

[[noreturn]] [[gnu::format(printf, 1, 2)]] void refuse(const char* format, ...) {
  fputs("zavri-device: ", stderr);
  va_list arguments;
  va_start(arguments, format);
  vfprintf(stderr, format, arguments);
  va_end(arguments);
  fputc('\n', stderr);
  exit(2);
}

// Takes sizes of frames for which the denoise merges, from two megapixels on, and all operations
// are defined.
void parse_size(const char* text, BenchOptions& options) {
  constexpr uint32_t kLeast = 480;
  constexpr uint32_t kMost = 6144;
  int end = 0;
  bool fits = sscanf(text, "%4ux%4u%n", &options.width, &options.height, &end) == 2 &&
              text[end] == '\0' && options.width * options.height >= 2000000;
  for (const uint32_t side : {options.width, options.height}) {
    fits = fits && side >= kLeast && side <= kMost && side % 8 == 0;
  }
  if (!fits) {
    refuse("--size: '%s' should be WxH, multiples of 8 from %u to %u, 2 megapixels or more", text,
           kLeast, kMost);
  }
}

double parse_number(const char* option, const char* text, double least, double most) {
  char* end = nullptr;
  const double value = strtod(text, &end);
  if (end == text || *end != '\0' || !(value >= least && value <= most)) {
    refuse("%s: '%s' should be a number from %g to %g", option, text, least, most);
  }
  return value;
}

BenchOptions parse_bench(int count, char** arguments) {
  BenchOptions options;
  for (int i = 0; i < count; ++i) {
    const char* const option = arguments[i];
    if (strcmp(option, "--json") == 0) {
      options.json = true;
      continue;
    }
    const bool is_size = strcmp(option, "--size") == 0;
    const bool is_threads = strcmp(option, "--threads") == 0;
    if (!is_size && !is_threads && strcmp(option, "--seconds") != 0) {
      refuse("bench has no argument '%s'; see --help", option);
    }
    if (++i == count) refuse("%s: needs a value", option);
    if (is_size) {
      parse_size(arguments[i], options);
    } else if (is_threads) {
      const double threads = parse_number(option, arguments[i], 1, 4);
      options.threads = static_cast<int>(threads);
      if (options.threads != threads) refuse("%s: '%s' is no whole number", option, arguments[i]);
    } else {
      options.seconds = parse_number(option, arguments[i], 0.1, 3600);
    }
  }
  return options;
}

int run(int count, char** arguments) {
  for (int i = 0; i < count; ++i) {
    if (strcmp(arguments[i], "--help") != 0 && strcmp(arguments[i], "-h") != 0) continue;
    fputs(kHelp, stdout);
    return 0;
  }
  if (count == 0) refuse("no command; there are bench, probe and verify");
  const char* const command = arguments[0];
  if (strcmp(command, "bench") == 0) return bench(parse_bench(count - 1, arguments + 1));
  const bool is_probe = strcmp(command, "probe") == 0;
  if (!is_probe && strcmp(command, "verify") != 0) {
    refuse("no command '%s'; there are bench, probe and verify", command);
  }
  if (count > 1) refuse("%s takes no argument, not '%s'", command, arguments[1]);
  return is_probe ? probe() : verify();
}

}  // namespace
}  // namespace zavri::device

int main(int argc, char** argv) { return zavri::device::run(argc - 1, argv + 1); }
