#include "tests/support/allocations.h"

#include <cstdlib>
#include <cstring>
#include <new>

#include "tests/support/system_faults.h"

namespace zavri::testing {
namespace {

WatchAllocations* g_watch = nullptr;

// Records a request, and tells whether it is to fail.
bool refused(size_t size) {
  if (g_watch != nullptr) g_watch->sizes.push_back(size);
  return fails(SystemCall::kMalloc);
}

}  // namespace

WatchAllocations::WatchAllocations() { g_watch = this; }

WatchAllocations::~WatchAllocations() { g_watch = nullptr; }

}  // namespace zavri::testing

using namespace zavri::testing;

extern "C" {
void* __real_malloc(size_t);
void* __real_calloc(size_t, size_t);
void __real_free(void*);

void* __wrap_malloc(size_t size) {
  if (refused(size)) return nullptr;
  void* const block = __real_malloc(size);
  if (g_watch != nullptr && block != nullptr) memset(block, WatchAllocations::kFill, size);
  return block;
}

// An optimising link turns malloc and a memset to 0 into one call of it.
void* __wrap_calloc(size_t count, size_t size) {
  return refused(count * size) ? nullptr : __real_calloc(count, size);
}

void __wrap_free(void* pointer) {
  if (g_watch != nullptr && pointer != nullptr) ++g_watch->freed;
  __real_free(pointer);
}
}

// These operators stand in for those of a C++ library that is linked statically, which would call
// the wrapped functions for containers, too.
void* operator new(size_t size) {
  void* const block = fails(SystemCall::kNew) ? nullptr : __real_malloc(size != 0 ? size : 1);
  if (block == nullptr) abort();
  return block;
}

void operator delete(void* pointer) noexcept { __real_free(pointer); }

void operator delete(void* pointer, size_t /*size*/) noexcept { __real_free(pointer); }
