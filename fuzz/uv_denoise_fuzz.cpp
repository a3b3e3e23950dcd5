// Fuzzes the chroma denoise with planes of every shape that the header admits, in every build. The
// memory ends where the header says that the strips stop reading.
#include <iterator>

#include "fuzz/fuzzing.h"
#include "include/zavricustpro.h"

using namespace zavri::fuzzing;

namespace {

struct Filter {
  ThreadPoolTaskFunc strip;
  uint32_t reach;
  uint32_t columns;
  bool borders;
};
constexpr Filter kFilters[] = {{zavri_mp_single_UV_denoise_new_inner_7, 3, 15, true},
                               {zavri_mp_single_UV_denoise_new_inner_11, 5, 24, true},
                               {zavri_mp_single_UV_denoise_new_inner_15, 7, 28, true},
                               {zavri_mp_single_UV_denoise_new_inner_19, 9, 32, true},
                               {zavri_mp_single_UV_denoise_inner_11, 5, 10, false}};

// Tells whether the last strip has as many grid rows as its borders take.
bool admits(uint32_t height, const Filter& filter) {
  return (height - 3 * (height / 4)) / 2 >= 2 * filter.reach;
}

// The strips may touch these bytes before the plane and from its first on.
struct Room {
  size_t before;
  size_t plane;
};

Room room_for(const T_UVDenoiseParam& p, const Filter& filter) {
  if (!filter.borders) return {0, size_t{p.height - 1} * p.stride + p.width};
  return {zavri_room_uv_denoise_before(&p), zavri_room_uv_denoise(&p)};
}

// The weights stay below what could add up to nothing.
void read_weights(Input& input, T_UVDenoiseParam& param) {
  param.threshold = static_cast<int8_t>(input.byte());
  const auto heaviest = static_cast<int>(input.below(128));
  const int least = input.below(4) == 0 ? -3 : 0;
  for (int8_t& weight : param.weight_table) {
    weight = static_cast<int8_t>(least + static_cast<int>(input.byte()) % (heaviest - least + 1));
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  const Filter& filter = kFilters[input.below(std::size(kFilters))];
  T_UVDenoiseParam param{};
  param.width = 4 * filter.columns + 2 * input.below(70);
  param.height = 16 * filter.reach - 9 + input.below(46);
  if (!admits(param.height, filter)) return 0;
  param.kernel_size = static_cast<int8_t>(2 * filter.reach + 1);
  param.stride = param.width + input.below(9);
  const Room room = room_for(param, filter);
  Picture picture(input);
  read_weights(input, param);
  const Bytes bytes = picture.plane(room.before + room.plane);
  expect_one_result([&] {
    Bytes result = bytes;
    param.uv_plane = result.data() + room.before;
    for (uint32_t k = 0; k < kZavriStrips; ++k) filter.strip(&k, &param, nullptr);
    return result;
  });
  return 0;
}
