#include "tools/operations/rnr.h"

#include <zavricustpro.h>

#include <algorithm>

#include "tools/error.h"

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

void build_tables(const Rnr& rnr, const Frame& frame) {
  // The library keeps its tables when nothing but the strength is new.
  zavri_mp_RNR_init_base(0, 0, 0, 0, 0);
  zavri_mp_RNR_init_base(static_cast<uint32_t>(frame.width()),
                         static_cast<uint32_t>(frame.height()),
                         static_cast<uint32_t>(frame.layout().stride),
                         static_cast<uint32_t>(rnr.radius), rnr.strength);
  for_all_tiles(weigh, nullptr);
}

}  // namespace

Settings Rnr::settings() {
  return {whole_number("radius", radius, 1, 400, "where the blur is full, % of a corner's"),
          whole_number("strength", strength, 0, 100, "of the blur there, %")};
}

// The library counts squared distances, and their products with the weight, in 32 bits.
void Rnr::check(const Size& size, int frames) const {
  check_count(frames);
  const auto square = [](int64_t value) { return value * value; };
  const int64_t corner = square(size.width / 2) + square(size.height / 2);
  const int64_t most_radius = UINT32_MAX / corner;
  if (radius > most_radius) {
    throw Error("--radius " + std::to_string(radius) + ": at " + size.text() + " at most " +
                std::to_string(most_radius));
  }
  const int64_t start = square(std::min(size.width, size.height) / 4 - 1);
  const int64_t span = std::min(corner, corner * radius / 100) - start;
  const int64_t full = strength * 128 / 100;
  if (span <= 0 || full * span <= INT32_MAX) return;
  const int64_t most_strength = ((INT32_MAX / span + 1) * 100 - 1) / 128;
  throw Error("--strength " + std::to_string(strength) + ": at " + size.text() + " and --radius " +
              std::to_string(radius) + " at most " + std::to_string(most_strength));
}

Result Rnr::run(const Frames& frames, int runs) const {
  const Frame& frame = frames.front();
  check(size_of(frame), static_cast<int>(frames.size()));
  start_pool();
  const double tables = median_seconds(
      1, [] {}, [&] { build_tables(*this, frame); });
  Result result;
  result.seconds = median_seconds(
      runs, [&] { result.frame = frame; },
      [&] { for_all_tiles(process, result.frame.luma_row(0)); });
  result.figures = {{"tables_milliseconds", 1e3 * tables}};
  return result;
}

}  // namespace zavri::tools
