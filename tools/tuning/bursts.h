#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tools/images/files.h"
#include "tools/images/mask.h"

namespace zavri::tools {

// Says where a tuning gets bursts from: a folder, as zavri burst writes one or with the frames of a
// phone alone, or a photograph, of which moving bursts are made.
struct BurstSource {
  std::string path;
  // Names what the burst shows: a photograph's name without folder and extension, a folder's
  // without the digits at its end, so that a scene's folders may be told apart by gains.
  std::string picture;
  std::vector<int> gains;
  bool is_photograph = false;
};

// Reads "GAIN=FOLDER" or the path of a photograph, which is captured with each of the gains as
// those of the sensor, too. Throws an Error that says what would be right.
BurstSource parse_source(const std::string& text, const std::vector<int>& gains);

struct TuningBurst {
  std::vector<Frame> frames;
  std::optional<Frame> clean;
  std::optional<Mask> moving;
};

// Loads or makes the burst of the source at one of its gains. Bursts of photographs have a hand's
// shake of half a pixel and an object that moves; they differ by seed and gain alone.
TuningBurst load_burst(const BurstSource& source, int gain, const RawOptions& raw, uint64_t seed);

}  // namespace zavri::tools
