// Feeds a fuzz target seeded random inputs where libFuzzer is not linked.
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

// A sanitizer that is linked defines this function.
extern "C" __attribute__((weak)) void __sanitizer_set_death_callback(void (*callback)());

namespace {

unsigned long g_seed;

void report() { fprintf(stderr, "failed with the input of seed %lu\n", g_seed); }

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    fprintf(stderr, "usage: %s COUNT [FIRST_SEED]\n", argv[0]);
    return 2;
  }
  if (__sanitizer_set_death_callback) __sanitizer_set_death_callback(report);
  std::signal(SIGABRT, [](int) { report(); });

  const unsigned long count = strtoul(argv[1], nullptr, 10);
  const unsigned long first = argc > 2 ? strtoul(argv[2], nullptr, 10) : 1;
  std::vector<uint8_t> input(64);
  for (g_seed = first; g_seed < first + count; ++g_seed) {
    std::minstd_rand random(static_cast<uint32_t>(g_seed));
    random.discard(3);  // neighbouring seeds would start alike
    for (uint8_t& byte : input) byte = static_cast<uint8_t>(random() >> 16);
    LLVMFuzzerTestOneInput(input.data(), input.size());
  }
  return 0;
}
