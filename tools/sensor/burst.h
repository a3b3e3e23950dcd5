#pragma once

#include <string>
#include <vector>

#include "tools/images/frame.h"
#include "tools/sensor/noise.h"

namespace zavri::tools {

// A still scene captured several times: frames that differ in their noise alone.
struct BurstFrames {
  Frame clean;
  std::vector<Frame> noisy;
};

// The frames show the middle of the photograph.
BurstFrames make_burst(const Picture& photograph, const Sensor& sensor, uint64_t seed, int frames);

// The names and frames under which a burst is kept, such as frame0_5312x2988.nv12.
struct NamedFrame {
  std::string path;
  const Frame* frame;
};
std::vector<NamedFrame> name_frames(const BurstFrames& burst, const std::string& folder,
                                    const std::string& pixel);

}  // namespace zavri::tools
