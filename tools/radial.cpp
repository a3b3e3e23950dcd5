#include "tools/radial.h"

#include <zavricustpro.h>

#include <algorithm>

#include "tools/error.h"
#include "tools/timing.h"

namespace zavri::tools {
namespace {

constexpr int kTiles = 12;

// Runs the function for all tiles of the plane on the library's pool.
void for_all_tiles(ThreadPoolTaskFunc function, uint8_t* plane) {
  uint32_t numbers[kTiles];
  T_ThreadPoolTaskInput inputs[kTiles];
  for (uint32_t k = 0; k < kTiles; ++k) {
    numbers[k] = k;
    inputs[k] = {&numbers[k], plane, nullptr};
  }
  ThreadPoolWorker worker(g_threadpool, kTiles, function, inputs);
  worker.Work();
}

void weigh(const void* tile, const void*, void*) { zavri_mp_RNR_init_weight(tile); }

void process(const void* tile, const void*, void* plane) {
  zavri_mp_RNR_process_inner(tile, plane);
}

void build_tables(const Frame& frame, const RadialSettings& settings) {
  const auto width = static_cast<uint32_t>(frame.width);
  // The library keeps its tables when only the strength is new.
  zavri_mp_RNR_init_base(0, 0, 0, 0, 0);
  zavri_mp_RNR_init_base(width, static_cast<uint32_t>(frame.height), width,
                         static_cast<uint32_t>(settings.radius), settings.strength);
  for_all_tiles(weigh, nullptr);
}

}  // namespace

// The library counts squared distances, and their products with the weight, in 32 bits.
std::string refusal(const Frame& frame, const RadialSettings& settings) {
  const auto square = [](int64_t value) { return value * value; };
  const int64_t corner = square(frame.width / 2) + square(frame.height / 2);
  const int64_t most_radius = UINT32_MAX / corner;
  if (settings.radius > most_radius) {
    return "--radius " + std::to_string(settings.radius) + ": at " + frame.size() + " at most " +
           std::to_string(most_radius);
  }
  const int64_t start = square(std::min(frame.width, frame.height) / 4 - 1);
  const int64_t span = std::min(corner, corner * settings.radius / 100) - start;
  const int64_t full = settings.strength * 128 / 100;
  if (span <= 0 || full * span <= INT32_MAX) return {};
  const int64_t most_strength = ((INT32_MAX / span + 1) * 100 - 1) / 128;
  return "--strength " + std::to_string(settings.strength) + ": at " + frame.size() +
         " and --radius " + std::to_string(settings.radius) + " at most " +
         std::to_string(most_strength);
}

RadialResult reduce_radially(const Frame& frame, const RadialSettings& settings, int runs) {
  const std::string refused = refusal(frame, settings);
  if (!refused.empty()) throw Error(refused);
  if (HALThreadPoolInit() != 0) throw Error("the library cannot start its threads", kRefused);
  RadialResult result{frame, 0, 0};
  result.tables_seconds = seconds_of([&] { build_tables(frame, settings); });
  std::vector<double> seconds;
  for (int run = 0; run < runs; ++run) {
    result.frame.luma = frame.luma;
    seconds.push_back(seconds_of([&] { for_all_tiles(process, result.frame.luma.data()); }));
  }
  result.seconds = median(seconds);
  return result;
}

}  // namespace zavri::tools
