#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "device/processors.h"

namespace zavri::device {

struct Operation {
  std::string name;
  bool takes_threads;
  std::function<void()> prepare;  // goes before each run and is not timed
  std::function<void(int threads)> run;
};

// Returns every operation of the library on noisy frames, memcpy of a frame first. The operations
// own the frames.
std::vector<Operation> all_operations(uint32_t width, uint32_t height);

}  // namespace zavri::device
