#include "bench/instructions/count.h"

#include <unistd.h>

#include <cstdint>
#include <cstdio>

#include "bench/instructions/marks.h"

namespace zavri::bench {
namespace {

// Returns the hash FNV-1a of the bytes.
uint32_t hash(const Bytes& bytes) {
  uint32_t hash = 2166136261u;
  for (const uint8_t byte : bytes) hash = (hash ^ byte) * 16777619u;
  return hash;
}

}  // namespace

void count(const std::string& operation, size_t pixels, const std::function<void()>& prepare,
           const std::function<void()>& work, const Bytes& result) {
  prepare();
  work();
  prepare();
  syscall(kMarkStart);
  work();
  syscall(kMarkEnd);
  printf("%s %zu %08x\n", operation.c_str(), pixels, hash(result));
}

void count(const std::string& operation, size_t pixels, const std::function<void()>& work,
           const Bytes& result) {
  count(
      operation, pixels, [] {}, work, result);
}

}  // namespace zavri::bench
