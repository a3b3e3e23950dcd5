#pragma once

#include <cstdint>
#include <random>
#include <vector>

// Makes sample data for differential tests of the kernels.
namespace zavri::testing {

using Random = std::mt19937;

// Returns a value, uniform in [low, high].
int pick(Random& random, int low, int high);

// Each style reaches different paths and overflows different lanes.
enum class Style { kUniform, kNearEqual, kExtremes, kSpikes };
inline constexpr Style kStyles[] = {Style::kUniform, Style::kNearEqual, Style::kExtremes,
                                    Style::kSpikes};

// Returns `size` bytes. By style they have any value, are a level +-4, 0 and 255 only, or flat with
// a rare outlier.
std::vector<uint8_t> samples(Random& random, Style style, size_t size);

// Returns bytes that count up from `first`.
std::vector<uint8_t> counting(size_t size, uint8_t first = 0);

}  // namespace zavri::testing
