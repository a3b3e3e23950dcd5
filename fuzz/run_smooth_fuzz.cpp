// Fuzzes the smoothing of chroma runs.
#include <algorithm>

#include "denoise3d/uv_run_smooth.h"
#include "fuzz/fuzzing.h"

using namespace zavri::fuzzing;

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  T_UvRunSmoothParam param{};
  param.width = static_cast<uint16_t>(1 + input.below(140));
  param.rows = static_cast<uint16_t>(input.below(40));
  param.stride = static_cast<uint16_t>(param.width + (input.flag() ? input.below(9) : 0));
  // Pairs stand at even offsets, along the plane and along each row.
  const size_t along = size_t{param.rows} * param.stride;
  const size_t rows = along + param.width % 2 - (param.stride - param.width);
  const size_t room = param.rows == 0 ? 0 : std::max(along + along % 2, rows);
  const Bytes plane = Picture(input).plane(room);
  expect_one_result([&] {
    Bytes result = plane;
    param.plane = result.data();
    uv_run_smooth(&param);
    return result;
  });
  return 0;
}
