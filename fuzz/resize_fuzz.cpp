// Fuzzes the resize with frames of every shape and every mode.
#include "fuzz/fuzzing.h"
#include "include/zavricustpro.h"

using namespace zavri::fuzzing;

namespace {

// Heights of 4 and 5 are outside the contract.
uint16_t height_from(uint32_t value) {
  return static_cast<uint16_t>(value < 4 ? value : value + 2);
}

T_ResizeParam read_record(Input& input) {
  T_ResizeParam p{};
  p.scale_mode = static_cast<uint16_t>(input.below(16) == 0 ? 2 : input.below(2));
  const bool doubled = input.flag();
  p.src_width = static_cast<uint16_t>(2 * (1 + input.below(60)));
  p.src_height = height_from(1 + input.below(50));
  p.src_stride = static_cast<uint16_t>(p.src_width + (input.flag() ? 2 * input.below(9) : 0));
  p.dst_width = static_cast<uint16_t>(p.src_width + (doubled ? p.src_width : 2 * input.below(70)));
  p.dst_height = doubled ? static_cast<uint16_t>(2 * p.src_height)
                         : height_from(p.src_height + input.below(60));
  if (p.dst_height == 4) p.dst_height = 6;
  p.dst_stride = static_cast<uint16_t>(p.dst_width + 2 * input.below(9));
  if (p.dst_stride < p.src_stride) p.dst_stride = p.src_stride;
  return p;
}

// The chroma of other strips is not defined.
bool all_strips_show_rows(const T_ResizeParam& p) {
  return p.scale_mode < 2 && p.src_height % 8 == 0 && p.dst_height % 8 == 0;
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  T_ResizeParam p = read_record(input);
  Picture picture(input);
  const Bytes src_y =
      picture.plane(zavri_room_resize_luma(p.src_width, p.src_height, p.src_stride));
  const Bytes src_uv = picture.plane(zavri_room_resize_chroma(p.src_height, p.src_stride) + 0);
  p.src_y = src_y.data();
  p.src_uv = src_uv.data();
  expect_one_result([&] {
    Bytes y(zavri_room_resize_luma(p.dst_width, p.dst_height, p.dst_stride));
    Bytes uv(zavri_room_resize_chroma(p.dst_height, p.dst_stride));
    p.dst_y = y.data();
    p.dst_uv = uv.data();
    const uint32_t refusal = src_uv.empty() || uv.empty() ? 2 : 0;
    if (zavri_mp_resize_process(&p) != refusal) abort();
    if (!all_strips_show_rows(p)) return y;
    for (size_t row = 0; row < p.dst_height / 2u; ++row) {
      const uint8_t* const first = &uv[row * p.dst_stride];
      y.insert(y.end(), first, first + p.dst_width);
    }
    return y;
  });
  return 0;
}
