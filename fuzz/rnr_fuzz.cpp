// Fuzzes the radial noise reduction, from its tables to the blurred plane.
#include "fuzz/fuzzing.h"
#include "include/zavricustpro.h"

using namespace zavri::fuzzing;

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  const uint32_t width = 1 + input.below(200);
  const uint32_t height = 1 + input.below(100);
  const uint32_t stride = width + input.below(9);
  // Weights count modulo 2^32 where the radius is beyond a frame's corners.
  const uint32_t radius = input.flag() ? input.below(120) : input.byte() << input.below(25);
  const auto strength = static_cast<int32_t>(input.below(101));
  const Bytes plane = Picture(input).plane((height - 1) * stride + width);
  expect_one_result([&] {
    Bytes result = plane;
    zavri_mp_RNR_init_base(0, 0, 0, 1, 0);  // nothing of the build before stays
    if (zavri_mp_RNR_init_base(width, height, stride, radius, strength) != 1) abort();
    for (uint32_t tile = 0; tile < 12; ++tile) zavri_mp_RNR_init_weight(&tile);
    for (uint32_t tile = 0; tile < 12; ++tile) zavri_mp_RNR_process_inner(&tile, result.data());
    return result;
  });
  return 0;
}
