// Executes every operation of the library on one thread, for count_plugin.c to count.
#include "bench/instructions/count.h"

// Log lines are no part of the count.
extern "C" int __android_log_print(int, const char*, const char*, ...) { return 0; }

int main() {
  using namespace zavri::bench;
  count_denoise();
  const Bytes picture = run_plane(kWidth, kHeight * 3 / 2, Runs::kShort);
  count_resize(picture);
  count_rnr(picture);
  count_composition(picture);
  count_measures(picture);
}
