#pragma once

#include <cstdint>

#include "simd/builds.h"

// Compares the chroma window's vector division with the language's, over all numerators and all
// sums of weights (a part of them on emulators and under sanitizers). It is compiled like the
// kernels.
namespace zavri::testing {

struct QuotientCheck {
  uint64_t checked;
  uint64_t wrong;
};

QuotientCheck check_quotients(Vector16Build);
QuotientCheck check_quotients(Vector32Build);
inline QuotientCheck check_quotients(PlainBuild) { return {}; }

inline QuotientCheck check_quotients(Build build) {
  return pick_build(build, [](auto tag) { return check_quotients(tag); });
}

}  // namespace zavri::testing
