// The shared object has allocation functions of its own, because those of a C++ library throw. With
// a static one each phone would store what serves an exception that nobody can catch: unwinder,
// personality, and the demangler for the last words.
#include <cstdlib>
#include <new>

void* operator new(size_t size) {
  void* const block = malloc(size != 0 ? size : 1);
  if (block == nullptr) abort();
  return block;
}

void operator delete(void* block) noexcept { free(block); }

void operator delete(void* block, size_t /*size*/) noexcept { free(block); }
