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

// The library counts squared distances in 32 bits.
void check(const Frame& frame, const RadialSettings& settings) {
  const auto half_width = static_cast<uint64_t>(frame.width) / 2;
  const auto half_height = static_cast<uint64_t>(frame.height) / 2;
  const uint64_t corner = half_width * half_width + half_height * half_height;
  const uint64_t most = UINT32_MAX / corner;
  if (static_cast<uint64_t>(settings.radius) > most || std::max(half_width, half_height) > 0x7fff) {
    throw Error("--radius " + std::to_string(settings.radius) + ": at " + frame.size() +
                " at most " + std::to_string(most) + ", and 65535 pixels a side");
  }
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

RadialResult reduce_radially(const Frame& frame, const RadialSettings& settings, int runs) {
  check(frame, settings);
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
