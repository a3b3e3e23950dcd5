#include "bench/touch.h"

#include <cstring>

namespace zavri::bench {

#if defined(__x86_64__)
#define ZAVRI_WIDEST __attribute__((target_clones("avx2", "default")))
#else
#define ZAVRI_WIDEST
#endif

ZAVRI_WIDEST
void touch_row(uint8_t* __restrict written, const uint8_t* const* read, int others, size_t bytes) {
  switch (others) {
    case 0:
      for (size_t i = 0; i < bytes; ++i) written[i] ^= 0x55;
      break;
    case 1: {
      const uint8_t* const a = read[0];
      for (size_t i = 0; i < bytes; ++i) written[i] ^= a[i];
      break;
    }
    case 2: {
      const uint8_t* const a = read[0];
      const uint8_t* const b = read[1];
      for (size_t i = 0; i < bytes; ++i) written[i] ^= a[i] ^ b[i];
      break;
    }
    default: {
      const uint8_t* const a = read[0];
      const uint8_t* const b = read[1];
      const uint8_t* const c = read[2];
      for (size_t i = 0; i < bytes; ++i) written[i] ^= a[i] ^ b[i] ^ c[i];
      break;
    }
  }
}

ZAVRI_WIDEST
uint64_t touch_row(const uint8_t* read, size_t bytes) {
  uint64_t all = 0;
  for (size_t i = 0; i + sizeof all <= bytes; i += sizeof all) {
    uint64_t some;
    memcpy(&some, read + i, sizeof some);
    all ^= some;
  }
  for (size_t i = bytes - bytes % sizeof all; i < bytes; ++i) all ^= read[i];
  return all;
}

}  // namespace zavri::bench
