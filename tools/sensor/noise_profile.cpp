#include "tools/sensor/noise_profile.h"

#include <cmath>
#include <nlohmann/json.hpp>

#include "tools/error.h"
#include "tools/images/storage.h"
#include "tools/sensor/random.h"
#include "tools/sensor/rows.h"

namespace zavri::tools {
namespace {

constexpr const char* kForm =
    "a noise profile is JSON such as {\"y\": {\"a\": 0.2, \"b\": 4}, \"u\": .., \"v\": ..}, as "
    "zavri noise -o writes it";

// Holds the standard deviation of each plane's noise at each level.
using Deviations = std::array<std::array<float, 256>, 3>;

Deviations deviations_of(const NoiseProfile& profile) {
  Deviations deviations;
  for (size_t plane = 0; plane < profile.size(); ++plane) {
    for (size_t level = 0; level < 256; ++level) {
      deviations[plane][level] =
          static_cast<float>(std::sqrt(profile[plane].variance(static_cast<double>(level))));
    }
  }
  return deviations;
}

uint8_t noisy(uint8_t value, float deviation, Generator& generator) {
  const double draw = normal_draws()[generator.next() % kDraws];
  return static_cast<uint8_t>(std::clamp(value + deviation * draw + 0.5, 0.0, 255.0));
}

}  // namespace

Frame with_noise(const Frame& clean, const NoiseProfile& profile, uint64_t seed, int index) {
  const Deviations deviations = deviations_of(profile);
  Frame frame = clean;
  const size_t first = clean.order() == ChromaOrder::kUv ? 1 : 2;
  for_each_row(clean.height() / 2, [&](int pair) {
    Generator generator = row_generator(seed, index, pair);
    const uint8_t* const rows[] = {clean.luma_row(2 * pair), clean.luma_row(2 * pair + 1)};
    uint8_t* const chroma = frame.chroma_row(pair);
    for (int x = 0; x < clean.width(); x += 2) {
      const int level = (rows[0][x] + rows[0][x + 1] + rows[1][x] + rows[1][x + 1] + 2) / 4;
      chroma[x] = noisy(chroma[x], deviations[first][static_cast<size_t>(level)], generator);
      chroma[x + 1] =
          noisy(chroma[x + 1], deviations[3 - first][static_cast<size_t>(level)], generator);
      for (int i : {0, 1, 2, 3}) {
        const uint8_t value = rows[i / 2][x + i % 2];
        frame.luma_row(2 * pair + i / 2)[x + i % 2] = noisy(value, deviations[0][value], generator);
      }
    }
  });
  return frame;
}

std::string to_json(const NoiseProfile& profile) {
  nlohmann::ordered_json json;
  for (size_t i = 0; i < profile.size(); ++i) {
    const auto rounded = [](double value) { return std::round(1e6 * value) / 1e6; };
    json[kPlaneNames[i]] = {{"a", rounded(profile[i].a)}, {"b", rounded(profile[i].b)}};
  }
  return json.dump(2) + '\n';
}

NoiseProfile load_noise_profile(const std::string& path) {
  const Bytes bytes = read_file(path);
  try {
    const auto json = nlohmann::json::parse(bytes.begin(), bytes.end());
    NoiseProfile profile;
    for (size_t i = 0; i < profile.size(); ++i) {
      const auto& plane = json.at(kPlaneNames[i]);
      profile[i] = {plane.at("a").get<double>(), plane.at("b").get<double>()};
    }
    return profile;
  } catch (const nlohmann::json::exception&) {
    throw Error(path + ": " + kForm);
  }
}

}  // namespace zavri::tools
