#pragma once

#include <string>
#include <vector>

#include "tools/console.h"
#include "tools/images/frame.h"

namespace zavri::tools {

// The demo has these when the burst is denoised.
struct DemoFrames {
  const Frame& clean;
  const Frame& noisy;
  const Frame& denoised;
  std::string folder;  // with its slash
  int runs;            // of each operation, whose median is told
};

// Names the pictures that further_operations() may write.
std::vector<std::string> further_pictures();

// Runs the operations besides the multi-frame denoise, writes a picture of each and tells, a row
// each, what it took and did. Leaves out what the photograph is too small for.
Report further_operations(const DemoFrames& demo);

}  // namespace zavri::tools
