#include <benchmark/benchmark.h>

#include "bench/summary.h"
#ifdef ZAVRI_BENCH_OPENCV
#include <opencv2/core/utility.hpp>
#endif

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
#ifdef ZAVRI_BENCH_OPENCV
  // The peers run on one thread like the kernels. The setting is that of the whole process, so that
  // no benchmark makes it.
  cv::setNumThreads(1);
#endif
  zavri::bench::Summary summary;
  benchmark::RunSpecifiedBenchmarks(&summary);
  benchmark::Shutdown();
}
