// Fuzzes the composition in all modes, and the four functions that draw its middle part.
#include <iterator>

#include "fuzz/fuzzing.h"
#include "include/zavricustpro.h"

using namespace zavri::fuzzing;

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  constexpr decltype(&zavri_mp_compose_two_same_frame_padding_left) kMiddles[] = {
      zavri_mp_compose_two_same_frame_padding_left, zavri_mp_compose_two_same_frame_padding_right,
      zavri_mp_compose_two_same_frame_padding_center,
      zavri_mp_compose_two_same_frame_padding_left_right};
  Input input(data, size);
  T_ComposeParam p{};
  p.width = static_cast<uint16_t>(1 + input.below(150));
  p.height = static_cast<uint16_t>(1 + input.below(40));
  p.mode = input.below(6);
  p.padding = static_cast<uint16_t>(input.flag() ? input.byte() % (p.width + 1) : 0);
  const uint32_t target = input.below(3);
  Picture picture(input);
  Bytes first = picture.plane(zavri_room_compose_frame(&p));
  Bytes second = picture.plane(first.size());
  const Bytes scratch = picture.plane(zavri_room_compose_scratch(&p));
  p.src_frame1 = first.data();
  p.src_frame2 = second.data();
  if (p.mode < std::size(kMiddles)) {
    expect_one_result([&] {
      Bytes result = scratch;
      kMiddles[p.mode](&p, result.data());
      return result;
    });
  }
  Bytes composed(first.size());
  p.dst_frame = target == 0 ? first.data() : target == 1 ? second.data() : composed.data();
  if (zavri_mp_compose_two_same_frame(&p) != 0) abort();
  return 0;
}
