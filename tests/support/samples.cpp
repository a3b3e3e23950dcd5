#include "tests/support/samples.h"

#include <algorithm>
#include <numeric>

namespace zavri::testing {

int pick(Random& random, int low, int high) {
  return std::uniform_int_distribution<int>(low, high)(random);
}

std::vector<uint8_t> samples(Random& random, Style style, size_t size) {
  std::vector<uint8_t> bytes(size);
  const int level = pick(random, 0, 255);
  for (uint8_t& byte : bytes) {
    const auto bits = static_cast<uint32_t>(random());
    const auto any = static_cast<uint8_t>(bits >> 8);
    switch (style) {
      case Style::kUniform:
        byte = any;
        break;
      case Style::kNearEqual:
        byte = static_cast<uint8_t>(std::min(255, std::max(0, level + any % 9 - 4)));
        break;
      case Style::kExtremes:
        byte = bits & 1 ? 255 : 0;
        break;
      case Style::kSpikes:
        byte = bits % 16 == 0 ? any : static_cast<uint8_t>(level);
        break;
    }
  }
  return bytes;
}

std::vector<uint8_t> counting(size_t size, uint8_t first) {
  std::vector<uint8_t> bytes(size);
  std::iota(bytes.begin(), bytes.end(), first);
  return bytes;
}

}  // namespace zavri::testing
