#pragma once

// The row kernels' sources are compiled once per build. The plain build runs the rule alone, which
// defines every result; each vector length has a build that gives the same bytes. The plain build
// compiles the vector forms, too, but calls none of them, so that sources need no #ifdef.
//
// A kernel family is a struct of function pointers. Its header declares one overload per build,
//
//   const FooKernels& foo_kernels(PlainBuild);     // likewise Vector16Build, Vector32Build
//
// its source defines the one for ThisBuild, and pick_build() chooses among them.

namespace zavri {

enum class Build { kPlain, kVector16, kVector32 };

struct PlainBuild {};
struct Vector16Build {};
struct Vector32Build {};

#if defined(__x86_64__) && !defined(ZAVRI_GENERIC_VECTORS)
#define ZAVRI_HAS_VECTOR32 1
inline constexpr Build kBuilds[] = {Build::kPlain, Build::kVector16, Build::kVector32};
#else
#define ZAVRI_HAS_VECTOR32 0
inline constexpr Build kBuilds[] = {Build::kPlain, Build::kVector16};
#endif

constexpr const char* build_name(Build build) {
  return build == Build::kPlain ? "plain" : build == Build::kVector16 ? "vector16" : "vector32";
}

bool runs_here(Build build);

// Returns the widest build that this processor runs, or the plain one where vectors gain nothing.
Build best_build();

// Calls `overloads` with the tag of `build`.
template <class Overloads>
decltype(auto) pick_build(Build build, Overloads overloads) {
#if ZAVRI_HAS_VECTOR32
  if (build == Build::kVector32) return overloads(Vector32Build{});
#endif
  if (build == Build::kVector16) return overloads(Vector16Build{});
  return overloads(PlainBuild{});
}

#if defined(ZAVRI_BUILD_PLAIN)
using ThisBuild = PlainBuild;
#elif defined(ZAVRI_VECTOR_BYTES)
#if ZAVRI_VECTOR_BYTES == 32
using ThisBuild = Vector32Build;
#else
using ThisBuild = Vector16Build;
#endif
#endif

}  // namespace zavri
