#include "tools/sensor/burst.h"

#include <algorithm>
#include <cstring>
#include <filesystem>

#include "tools/images/raw_format.h"

namespace zavri::tools {
namespace {

// Returns the middle of the photograph, with an even width and a height that is a multiple of 8.
// The library works on four strips of height / 8 pairs of rows, the last of which takes what is
// left: of 12 rows it is 6 high and the others are 2. Where 8 divides the height, all strips are
// alike and end where the planes end.
Picture middle_of(const Picture& photograph) {
  const bool is_low = photograph.height < 8;
  Picture middle(photograph.width & ~1, photograph.height & (is_low ? ~1 : ~7));
  const auto left = static_cast<size_t>(photograph.width - middle.width) / 2;
  const auto top = static_cast<size_t>(photograph.height - middle.height) / 2;
  const size_t row_bytes = 3 * static_cast<size_t>(middle.width);
  for (size_t y = 0; y < static_cast<size_t>(middle.height); ++y) {
    const size_t at = (top + y) * static_cast<size_t>(photograph.width) + left;
    std::copy_n(&photograph.rgb[3 * at], row_bytes, &middle.rgb[y * row_bytes]);
  }
  return middle;
}

// Tells whether name_frames() or name_mask() make such a name.
bool is_of_burst(const std::filesystem::path& path) {
  const std::string name = name_without_size(path);
  const std::string extension = path.extension();
  if (name == path.stem()) return false;
  if (extension == ".png") return name == "mask";
  const bool is_frame = name.size() == strlen("frame0") && name.compare(0, 5, "frame") == 0 &&
                        name.back() >= '0' && name.back() <= '9';
  return (extension == ".nv12" || extension == ".nv21") && (is_frame || name == "clean");
}

}  // namespace

BurstFrames make_burst(const Picture& photograph, const BurstSettings& settings) {
  const Scene scene(middle_of(photograph), settings.changes);
  BurstFrames burst;
  burst.views = scene.views(settings.frames, settings.seed);
  burst.clean = to_frame(scene.seen(burst.views[0]));
  if (settings.changes.object) burst.moving = scene.moving(burst.views);
  std::optional<SensorNoise> sensor;
  if (!settings.profile) sensor.emplace(settings.sensor);
  for (int k = 0; k < settings.frames; ++k) {
    const Picture seen = scene.seen(burst.views[static_cast<size_t>(k)]);
    burst.noisy.push_back(sensor ? capture(seen, *sensor, settings.seed, k)
                                 : with_noise(to_frame(seen), *settings.profile, settings.seed, k));
  }
  return burst;
}

std::vector<NamedFrame> name_frames(const BurstFrames& burst, const std::string& folder,
                                    const std::string& pixel) {
  const std::string end = '_' + burst.clean.size() + '.' + pixel;
  std::vector<NamedFrame> named{{folder + "/clean" + end, &burst.clean}};
  for (size_t k = 0; k < burst.noisy.size(); ++k) {
    std::string path = folder + "/frame";
    path += std::to_string(k) + end;
    named.push_back({path, &burst.noisy[k]});
  }
  return named;
}

std::string name_mask(const BurstFrames& burst, const std::string& folder) {
  return folder + "/mask_" + burst.clean.size() + ".png";
}

std::vector<std::string> burst_files(const std::string& folder) {
  std::vector<std::string> paths;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
    if (is_of_burst(entry.path())) paths.push_back(entry.path());
  }
  std::sort(paths.begin(), paths.end());
  return paths;
}

}  // namespace zavri::tools
