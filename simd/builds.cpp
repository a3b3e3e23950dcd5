#include "simd/builds.h"

#if defined(__arm__) && !defined(ZAVRI_GENERIC_VECTORS)
#define ZAVRI_ASKS_FOR_NEON
#include <asm/hwcap.h>
#include <sys/auxv.h>
#endif

namespace zavri {
namespace {

// Tells whether simd/vec.h has operations of this target's own. For other targets compilers take
// most vectors apart into bytes, which is slower than the plain rule.
#if defined(__x86_64__) || defined(__ARM_FP) || defined(ZAVRI_GENERIC_VECTORS)
constexpr bool kVectorsPay = true;
#else
constexpr bool kVectorsPay = false;
#endif

}  // namespace

bool runs_here([[maybe_unused]] Build build) {
#if ZAVRI_HAS_VECTOR32
  if (build == Build::kVector16) return __builtin_cpu_supports("sse4.2");
  if (build == Build::kVector32) {
    return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi2");
  }
#elif defined(ZAVRI_ASKS_FOR_NEON)
  if (build == Build::kVector16) return (getauxval(AT_HWCAP) & HWCAP_NEON) != 0;
#endif
  return true;
}

Build best_build() {
  Build best = Build::kPlain;
  if (!kVectorsPay) return best;
  for (const Build build : kBuilds) {
    if (runs_here(build)) best = build;
  }
  return best;
}

}  // namespace zavri
