#pragma once

#include <vector>

#include "simd/builds.h"

namespace zavri::testing {

// Makes the operations use one build of the kernels for its lifetime. The test executables wrap
// best_build() at link time.
class UseBuild {
 public:
  explicit UseBuild(Build build);
  ~UseBuild();
  UseBuild(const UseBuild&) = delete;
  UseBuild& operator=(const UseBuild&) = delete;
};

// Returns the builds that this machine runs, the plain rule first.
std::vector<Build> builds_here();

}  // namespace zavri::testing
