// Times the row kernels of the multi-frame denoise on 1920x1080, in every build that runs here.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "bench/summary.h"
#include "bench/timing.h"
#include "bench/touch.h"
#include "bench/workload.h"
#include "denoise3d/chroma_runs.h"
#include "denoise3d/merge.h"
#include "include/zavricustpro.h"

namespace zavri::bench {
namespace {

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;

struct MergeGroup {
  const char* name;
  MergeKind kind;
  bool chroma;
  bool luma;
  Expectation expectations[3];
};

constexpr MergeGroup kMerges[] = {
    {"whole", MergeKind::kWhole, true, true, {{15, 29}, {10, 19}, {6, 13}}},
    {"chroma", MergeKind::kChroma, true, false, {{36, 53}, {18, 36}, {9.5, 19}}},
    {"edges", MergeKind::kEdges, true, true, {{15, 29}, {10, 19}, {6, 13}}},
    {"edges_luma", MergeKind::kEdgesLuma, false, true, {}},
};

MergeRow row_of(Burst& burst, int row) {
  const size_t chroma = static_cast<size_t>(row) * kWidth;
  MergeRow result{};
  result.uv = &burst.chroma[0][chroma];
  result.y0 = &burst.luma[0][2 * chroma];
  result.y1 = result.y0 + kWidth;
  for (int k = 0; k < 3; ++k) {
    result.other_uv[k] = &burst.chroma[k + 1][chroma];
    result.other_y[k] = &burst.luma[k + 1][2 * chroma];
  }
  return result;
}

void touch(const MergeRow& row, const MergeGroup& merge, int others) {
  if (merge.chroma) touch_row(row.uv, row.other_uv, others, kWidth);
  if (!merge.luma) return;
  touch_row(row.y0, row.other_y, others, kWidth);
  touch_row(row.y1, row.other_y, 0, kWidth);
}

// The ramp stands at the same threshold as the splat, so that the kinds are comparable.
void add_merge(const MergeGroup& merge, int others, const std::string& group,
               const std::shared_ptr<Burst>& burst, const std::shared_ptr<const Burst>& pristine) {
  const auto restore_input = [=] {
    restore(burst->chroma[0], pristine->chroma[0]);
    restore(burst->luma[0], pristine->luma[0]);
  };
  for (const Build build : kBuilds) {
    if (!runs_here(build)) continue;
    const MergeFunction function = merge_kernels(build).get(merge.kind, others);
    add_restoring_benchmark(group + build_name(build), [=](benchmark::State& state) {
      const Bytes ramp(kWidth, kThreshold - 1);
      time_work(state, restore_input, [&] {
        for (int r = 0; r < kHeight / 2; ++r) {
          function(row_of(*burst, r), kWidth, {kThreshold - 1, kThreshold - 1, ramp.data()});
        }
      });
    });
  }
  add_restoring_benchmark(group + "touch", [=](benchmark::State& state) {
    time_work(state, restore_input, [&] {
      for (int r = 0; r < kHeight / 2; ++r) touch(row_of(*burst, r), merge, others);
    });
  });
}

void add_merges() {
  for (const auto& [noise, noise_name] :
       {std::pair(Noise::kNear, "near"), {Noise::kHard, "hard"}}) {
    const auto burst = std::make_shared<Burst>(kWidth, kHeight, noise);
    const auto pristine = std::make_shared<const Burst>(*burst);
    for (const MergeGroup& merge : kMerges) {
      for (int others = 1; others <= 3; ++others) {
        const std::string group = std::string("merge/") + merge.name + '/' +
                                  std::to_string(others + 1) + "_frames/" + noise_name;
        Summary::expect(group, merge.expectations[others - 1]);
        add_merge(merge, others, group + '/', burst, pristine);
      }
    }
  }
}

void add_runs(Runs runs, const char* name, const Expectation& sequence,
              const Expectation& columns) {
  const auto plane = std::make_shared<Bytes>(run_plane(kWidth, kHeight / 2, runs));
  const auto pristine = std::make_shared<const Bytes>(*plane);
  const auto restore_input = [=] { restore(*plane, *pristine); };
  const std::string sequence_group = std::string("runs/sequence/") + name;
  const std::string columns_group = std::string("runs/columns/") + name;
  Summary::expect(sequence_group, sequence);
  Summary::expect(columns_group, columns);
  for (const Build build : kBuilds) {
    if (!runs_here(build)) continue;
    const ChromaRunKernels& kernels = chroma_run_kernels(build);
    add_restoring_benchmark(sequence_group + '/' + build_name(build), [=](benchmark::State& state) {
      time_work(state, restore_input,
                [&] { kernels.smooth_sequence(plane->data(), plane->size()); });
    });
    add_restoring_benchmark(columns_group + '/' + build_name(build), [=](benchmark::State& state) {
      constexpr size_t kRows = kHeight / 2 / kZavriStrips;
      time_work(state, restore_input, [&] {
        for (size_t strip = 0; strip < kZavriStrips; ++strip) {
          kernels.smooth_columns(plane->data() + strip * kRows * kWidth, kWidth, kRows, kWidth);
        }
      });
    });
  }
  for (const std::string& group : {sequence_group, columns_group}) {
    add_restoring_benchmark(group + "/touch", [=](benchmark::State& state) {
      time_work(state, restore_input, [&] { touch_row(plane->data(), nullptr, 0, plane->size()); });
    });
  }
}

const bool kRegistered = [] {
  add_merges();
  add_runs(Runs::kLong, "long", {6.5, 9}, {3, 3});
  add_runs(Runs::kShort, "short", {1.2, 1.3}, {3, 3});
  return true;
}();

}  // namespace
}  // namespace zavri::bench
