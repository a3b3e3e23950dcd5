// Times the auto-shoot measures of the largest rectangle of a luma plane, in every build that runs
// here, on one thread.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <utility>

#include "bench/summary.h"
#include "bench/timing.h"
#include "bench/touch.h"
#include "bench/workload.h"
#include "include/zavricustpro.h"
#include "tests/support/use_build.h"

namespace zavri::bench {
namespace {

struct Plane {
  int width;
  int height;
  Bytes luma = run_plane(width, height, Runs::kShort);

  T_OptRect largest() const { return {0, 0, width - 1, height - 1}; }
};

struct Measure {
  const char* name;
  uint32_t (*run)(const uint8_t* luma, const T_OptRect* rect, uint32_t width, uint32_t height);
  int passes;  // how often the plane must be read
  Expectation expectation;
};

// Runs a measure of the rectangle that the library keeps.
template <uint32_t (*kRun)(const uint8_t*, uint32_t, uint32_t)>
uint32_t of_kept_rect(const uint8_t* luma, const T_OptRect* rect, uint32_t width, uint32_t height) {
  zavri_auto_shoot_opt_set_FV_rect(rect);
  return kRun(luma, width, height);
}

constexpr Measure kMeasures[] = {
    {"focus", zavri_auto_shoot_opt_get_FV_value, 1, {11, 19, 2.5}},
    {"derivation", of_kept_rect<zavri_auto_shoot_opt_get_FV_value_derivation>, 1, {}},
    {"average", of_kept_rect<zavri_auto_shoot_opt_get_FV_value_average>, 2, {11, 20, 1.5}},
    {"brightness", zavri_auto_shoot_opt_get_bright, 1, {10, 17, 1.2}},
};

void add_measure(const Measure& measure, const std::shared_ptr<const Plane>& plane) {
  const std::string group = std::string("autoshoot/") + std::to_string(plane->width) + 'x' +
                            std::to_string(plane->height) + '/' + measure.name;
  Summary::expect(group, measure.expectation);
  for (const Build build : testing::builds_here()) {
    add_benchmark(group + '/' + build_name(build), [=](benchmark::State& state) {
      const testing::UseBuild use(build);
      const T_OptRect rect = plane->largest();
      time_work(state, [&] {
        benchmark::DoNotOptimize(measure.run(plane->luma.data(), &rect,
                                             static_cast<uint32_t>(plane->width),
                                             static_cast<uint32_t>(plane->height)));
      });
    });
  }
  add_benchmark(group + "/touch", [=](benchmark::State& state) {
    time_work(state, [&] {
      for (int pass = 0; pass < measure.passes; ++pass) {
        benchmark::DoNotOptimize(touch_row(plane->luma.data(), plane->luma.size()));
      }
    });
  });
}

const bool kRegistered = [] {
  // The smaller plane stays in the cache: there the kernels show, not the memory.
  for (const auto& [width, height] : {std::pair(1920, 1080), std::pair(640, 480)}) {
    const auto plane = std::make_shared<const Plane>(Plane{width, height});
    for (Measure measure : kMeasures) {
      if (height < 1080) measure.expectation.most_of_touch = 0;
      add_measure(measure, plane);
    }
  }
  return true;
}();

}  // namespace
}  // namespace zavri::bench
