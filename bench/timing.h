#pragma once

#include <benchmark/benchmark.h>

#include <string>

#include "bench/repeated_runs.h"

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

// Registers a benchmark whose body restores before each run what the work changes.
template <class Body>
void add_restoring_benchmark(const std::string& name, Body body) {
  benchmark::RegisterBenchmark(name.c_str(), body)->UseManualTime()->Unit(benchmark::kMicrosecond);
}

// Times the work alone, for add_restoring_benchmark(); prepare() goes before each run.
template <class Prepare, class Work>
void time_work(benchmark::State& state, Prepare prepare, Work work) {
  for (auto _ : state) {
    prepare();
    state.SetIterationTime(seconds_of(work));
  }
}

}  // namespace zavri::bench
