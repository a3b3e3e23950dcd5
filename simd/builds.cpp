#include "simd/builds.h"

namespace zavri {

bool runs_here([[maybe_unused]] Build build) {
#if ZAVRI_HAS_VECTOR32
  if (build == Build::kVector16) return __builtin_cpu_supports("sse4.2");
  if (build == Build::kVector32) {
    return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi2");
  }
#endif
  return true;
}

Build best_build() {
  Build best = Build::kPlain;
  for (const Build build : kBuilds) {
    if (runs_here(build)) best = build;
  }
  return best;
}

}  // namespace zavri
