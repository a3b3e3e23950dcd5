#include "tools/tuning/bursts.h"

#include <algorithm>
#include <filesystem>

#include "tools/error.h"
#include "tools/operations/setting.h"
#include "tools/sensor/burst.h"

namespace zavri::tools {
namespace {

namespace fs = std::filesystem;

constexpr double kShake = 0.5;  // pixels from frame to frame
constexpr int kFrames = 4;

bool begins(const std::string& name, const char* with) { return name.rfind(with, 0) == 0; }

std::vector<std::string> files_in(const std::string& folder) {
  std::vector<std::string> paths;
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (entry.is_regular_file()) paths.push_back(entry.path());
  }
  std::sort(paths.begin(), paths.end());
  return paths;
}

// A clean frame and a mask are told by their names; all other files are frames.
TuningBurst load_folder(const std::string& folder, const RawOptions& raw) {
  TuningBurst burst;
  std::vector<std::string> frames;
  std::string mask;
  for (const std::string& path : files_in(folder)) {
    const std::string name = fs::path(path).filename();
    if (begins(name, "clean_")) {
      burst.clean = load_frame(path, {});
    } else if (begins(name, "mask_")) {
      mask = path;
    } else {
      frames.push_back(path);
    }
  }
  if (frames.size() < 2 || frames.size() > kFrames) {
    throw Error(folder + ": has " + std::to_string(frames.size()) +
                " frames, where a burst has 2 to " + std::to_string(kFrames) +
                ", beside clean_* and mask_*");
  }
  burst.frames = load_frames(frames, {raw, {}}, 1);
  if (mask.empty()) return burst;
  if (!burst.clean) throw Error(mask + ": goes with clean_*, the clean frame");
  burst.moving = load_mask(mask, burst.frames.front().size());
  return burst;
}

TuningBurst make(const std::string& path, int gain, uint64_t seed) {
  BurstSettings settings;
  settings.sensor.gain = gain;
  settings.changes.shake = kShake;
  settings.changes.object = true;
  settings.seed = seed;
  settings.frames = kFrames;
  BurstFrames made = make_burst(load_picture(path), settings);
  return {std::move(made.noisy), std::move(made.clean), std::move(made.moving)};
}

// Returns "kitchen" for the folders kitchen_8, kitchen16 and kitchen/32.
std::string scene_of(const std::string& folder) {
  const fs::path path = fs::canonical(folder);
  const std::string name = path.filename();
  const size_t last = name.find_last_not_of("0123456789_-");
  return last == std::string::npos ? path.parent_path().filename().string()
                                   : name.substr(0, last + 1);
}

}  // namespace

BurstSource parse_source(const std::string& text, const std::vector<int>& gains) {
  const size_t equals = text.find('=');
  const std::optional<int64_t> gain = parse_whole(text.substr(0, equals), 0, UINT8_MAX);
  if (equals != std::string::npos && gain) {
    const std::string folder = text.substr(equals + 1);
    if (!fs::is_directory(folder)) throw Error(text + ": there is no folder " + folder);
    return {folder, scene_of(folder), {static_cast<int>(*gain)}, false};
  }
  if (fs::is_directory(text)) {
    throw Error(text + ": takes the gain of the burst, too, as in 12=" + text);
  }
  if (!fs::exists(text)) throw Error(text + ": is neither GAIN=FOLDER nor a photograph");
  return {text, fs::path(text).stem(), gains, true};
}

TuningBurst load_burst(const BurstSource& source, int gain, const RawOptions& raw, uint64_t seed) {
  return source.is_photograph ? make(source.path, gain, seed) : load_folder(source.path, raw);
}

}  // namespace zavri::tools
