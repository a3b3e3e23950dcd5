#include "tests/support/allocations.h"

#include <cstring>

namespace zavri::testing {
namespace {

WatchAllocations* g_watch = nullptr;

}  // namespace

WatchAllocations::WatchAllocations(Outcome wanted) : outcome(wanted) { g_watch = this; }

WatchAllocations::~WatchAllocations() { g_watch = nullptr; }

}  // namespace zavri::testing

using zavri::testing::g_watch;
using zavri::testing::WatchAllocations;

extern "C" {
void* __real_malloc(size_t);
void __real_free(void*);

void* __wrap_malloc(size_t size) {
  if (g_watch != nullptr) {
    g_watch->sizes.push_back(size);
    if (g_watch->outcome == WatchAllocations::Outcome::kFail) return nullptr;
  }
  void* const block = __real_malloc(size);
  if (g_watch != nullptr && block != nullptr) memset(block, WatchAllocations::kFill, size);
  return block;
}

void __wrap_free(void* pointer) {
  if (g_watch != nullptr && pointer != nullptr) ++g_watch->freed;
  __real_free(pointer);
}
}
