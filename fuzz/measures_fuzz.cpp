// Fuzzes the four measures with planes and rectangles of every shape, refused ones among them.
#include "fuzz/fuzzing.h"
#include "include/zavricustpro.h"

using namespace zavri::fuzzing;

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  // The second form is wider than what the sharpness counts in 16 bits.
  const bool narrow = input.below(16) != 0;
  const uint32_t width = narrow ? 1 + input.byte() : 16384 - 64 + input.byte() * input.below(200);
  const uint32_t height = 1 + input.below(narrow ? 40 : 12);
  const auto coordinate = [&input](uint32_t side) {
    const uint32_t value = side <= 256 ? input.byte() : side * input.byte() / 255;
    return static_cast<int32_t>(value % (side + 1)) - (input.below(32) == 0);
  };
  T_OptRect rect;
  rect.x = coordinate(width);
  rect.y = coordinate(height);
  rect.width = coordinate(width - static_cast<uint32_t>(rect.x < 0 ? 0 : rect.x));
  rect.height = coordinate(height - static_cast<uint32_t>(rect.y < 0 ? 0 : rect.y));
  const Bytes luma = Picture(input).plane(size_t{width} * height);
  zavri_auto_shoot_opt_set_FV_rect(&rect);
  expect_one_result([&] {
    const uint8_t* const first = luma.data();
    return std::vector<uint32_t>{zavri_auto_shoot_opt_get_FV_value(first, &rect, width, height),
                                 zavri_auto_shoot_opt_get_FV_value_derivation(first, width, height),
                                 zavri_auto_shoot_opt_get_FV_value_average(first, width, height),
                                 zavri_auto_shoot_opt_get_bright(first, &rect, width, height)};
  });
  return 0;
}
