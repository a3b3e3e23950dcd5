#pragma once

#include <benchmark/benchmark.h>

#include <string>

namespace zavri::bench {

// Registers a benchmark of work whose time does not depend on what it did before.
template <class Body>
void add_benchmark(const std::string& name, Body body) {
  benchmark::RegisterBenchmark(name.c_str(), body)->UseRealTime()->Unit(benchmark::kMicrosecond);
}

template <class Work>
void time_work(benchmark::State& state, Work work) {
  for (auto _ : state) {
    work();
    benchmark::ClobberMemory();
  }
}

}  // namespace zavri::bench
