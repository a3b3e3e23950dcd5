#pragma once

#include <algorithm>
#include <cstdint>
#include <thread>
#include <vector>

namespace zavri::tools {

// Runs body(row) for every row of [0, rows), in bands on all processors.
template <class Body>
void for_each_row(int rows, Body body) {
  const int bands = std::clamp(static_cast<int>(std::thread::hardware_concurrency()), 1, rows);
  const auto run_band = [&](int band) {
    const auto begin = static_cast<int>(int64_t{rows} * band / bands);
    const auto end = static_cast<int>(int64_t{rows} * (band + 1) / bands);
    for (int row = begin; row < end; ++row) body(row);
  };
  std::vector<std::thread> threads;
  for (int band = 1; band < bands; ++band) threads.emplace_back(run_band, band);
  run_band(0);
  for (std::thread& thread : threads) thread.join();
}

}  // namespace zavri::tools
