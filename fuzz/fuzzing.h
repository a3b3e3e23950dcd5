#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "platform/log.h"
#include "tests/support/use_build.h"

extern "C" {
// libFuzzer, or the driver of ordinary builds, calls this function with each input.
int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

inline __attribute__((used)) int __android_log_print(int, const char*, const char*, ...) {
  return 0;
}
}

namespace zavri::fuzzing {

// Reads the fuzzer's input; zeros follow its end.
class Input {
 public:
  Input(const uint8_t* data, size_t size) : data_(data), end_(data + size) {}

  uint8_t byte() { return data_ == end_ ? uint8_t{0} : *data_++; }
  uint32_t below(uint32_t limit) { return byte() % limit; }
  bool flag() { return (byte() & 1) != 0; }

 private:
  const uint8_t* data_;
  const uint8_t* end_;
};

// A plane has exactly the bytes that a call may touch: the address sanitizer sees the first one
// outside.
using Bytes = std::vector<uint8_t>;

// Makes planes of levels from 60 on, as many as the input says, which wrap at 256.
class Picture {
 public:
  explicit Picture(Input& input) : levels_(1 + input.byte()), state_(input.byte()) {}

  Bytes plane(size_t size) {
    Bytes bytes(size);
    for (uint8_t& byte : bytes) {
      state_ = state_ * 1664525 + 1013904223;
      byte = static_cast<uint8_t>(60 + (state_ >> 24) % levels_);
    }
    return bytes;
  }

 private:
  uint32_t levels_;
  uint32_t state_;
};

// Aborts unless work() returns the same in every build of the kernels as by the plain rule.
template <class Work>
void expect_one_result(Work work) {
  const auto result = [&](Build build) {
    const testing::UseBuild use(build);
    return work();
  };
  const auto expected = result(Build::kPlain);
  for (const Build build : testing::builds_here()) {
    if (result(build) != expected) abort();
  }
}

}  // namespace zavri::fuzzing
