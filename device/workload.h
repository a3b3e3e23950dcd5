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
  std::function<void()> prepare;  // before each run, and not timed
  std::function<void(int threads)> run;
};

// Every operation of the library on noisy frames, memcpy of a frame first. The frames live until
// the operations do.
std::vector<Operation> all_operations(uint32_t width, uint32_t height);

}  // namespace zavri::device
