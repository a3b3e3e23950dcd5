#include "tools/burst.h"

#include <filesystem>

#include "tools/error.h"

namespace zavri::tools {

BurstFrames make_burst(const Picture& picture, const Sensor& sensor, uint64_t seed, int frames) {
  BurstFrames burst;
  burst.clean = to_frame(picture);
  const SensorNoise noise(sensor);
  for (int k = 0; k < frames; ++k) burst.noisy.push_back(capture(picture, noise, seed, k));
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

void make_folder(const std::string& folder) {
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (error) throw Error(folder + ": cannot be created: " + error.message());
}

}  // namespace zavri::tools
