#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/images/frame.h"
#include "tools/images/mask.h"
#include "tools/sensor/noise.h"
#include "tools/sensor/noise_profile.h"
#include "tools/sensor/scene.h"

namespace zavri::tools {

struct BurstSettings {
  Sensor sensor;
  std::optional<NoiseProfile> profile;  // of the noise, in the sensor's place
  Changes changes;
  uint64_t seed = 1;
  int frames = 4;
};

// Holds a scene captured several times, and the truth about it.
struct BurstFrames {
  Frame clean;  // what the first frame shows, without its noise
  std::vector<Frame> noisy;
  std::vector<View> views;     // of each frame
  std::optional<Mask> moving;  // where an object moves
};

// Makes a burst whose frames show the middle of the photograph.
BurstFrames make_burst(const Picture& photograph, const BurstSettings& settings);

// Frames of a burst are kept under names such as frame0_5312x2988.nv12.
struct NamedFrame {
  std::string path;
  const Frame* frame;
};
std::vector<NamedFrame> name_frames(const BurstFrames& burst, const std::string& folder,
                                    const std::string& pixel);

std::string name_mask(const BurstFrames& burst, const std::string& folder);

// Returns the paths of all frames and masks of bursts in a folder, whatever their sizes and
// formats.
std::vector<std::string> burst_files(const std::string& folder);

}  // namespace zavri::tools
