#pragma once

#include <cstdint>

// Each command of the program is one of these functions. Results go to stdout; the functions return
// the exit status.
namespace zavri::device {

struct BenchOptions {
  uint32_t width = 4000;
  uint32_t height = 3000;
  int threads = 4;      // the most that are tried
  double seconds = 10;  // about, for all measurements together
  bool json = false;
};

int bench(const BenchOptions& options);
int probe();
int verify();

}  // namespace zavri::device
