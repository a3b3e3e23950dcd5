#include "tests/support/use_build.h"

#include <optional>

namespace {

std::optional<zavri::Build> g_build;

}  // namespace

// The linker calls __wrap_<symbol> for zavri::best_build() and __real_<symbol> is that function;
// both are declared with its type, so that a change of that does not compile.
extern "C" {
decltype(zavri::best_build) __wrap__ZN5zavri10best_buildEv, __real__ZN5zavri10best_buildEv;
zavri::Build __wrap__ZN5zavri10best_buildEv() {
  return g_build ? *g_build : __real__ZN5zavri10best_buildEv();
}
}

namespace zavri::testing {

UseBuild::UseBuild(Build build) { g_build = build; }

UseBuild::~UseBuild() { g_build.reset(); }

std::vector<Build> builds_here() {
  std::vector<Build> builds;
  for (const Build build : kBuilds) {
    if (runs_here(build)) builds.push_back(build);
  }
  return builds;
}

}  // namespace zavri::testing
