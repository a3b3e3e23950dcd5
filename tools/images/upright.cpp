#include "tools/images/upright.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace zavri::tools {
namespace {

bool is_upright(const Orientation& o) {
  return !o.transposes && !o.reverses_columns && !o.reverses_rows;
}

// The matrix maps a stored pixel (x, y) to (m[0] x + m[3] y, m[1] x + m[4] y), with rows downwards.
Orientation from_matrix(const int32_t* m) {
  const bool transposes = std::abs(int64_t{m[0]}) < std::abs(int64_t{m[1]});
  return transposes ? Orientation{true, m[3] < 0, m[1] < 0}
                    : Orientation{false, m[0] < 0, m[4] < 0};
}

Orientation from_exif(const char* value) {
  constexpr Orientation kOrientations[] = {
      {false, false, false}, {false, true, false}, {false, true, true}, {false, false, true},
      {true, false, false},  {true, true, false},  {true, true, true},  {true, false, true}};
  const int number = std::atoi(value);
  return number >= 1 && number <= 8 ? kOrientations[number - 1] : Orientation{};
}

// Fills `to`, an upright plane of width x height cells, from the stored plane.
template <class Cell>
void turn(const uint8_t* from, uint8_t* to, int width, int height, const Orientation& orientation) {
  const size_t row = orientation.transposes ? 1 : static_cast<size_t>(width);
  const size_t column = orientation.transposes ? static_cast<size_t>(height) : 1;
  for (int y = 0; y < height; ++y) {
    const auto from_y = static_cast<size_t>(orientation.reverses_rows ? height - 1 - y : y);
    for (int x = 0; x < width; ++x, to += sizeof(Cell)) {
      const auto from_x = static_cast<size_t>(orientation.reverses_columns ? width - 1 - x : x);
      memcpy(to, from + (from_y * row + from_x * column) * sizeof(Cell), sizeof(Cell));
    }
  }
}

}  // namespace

Orientation orientation_of(const AVFrame& frame) {
  const AVFrameSideData* const matrix = av_frame_get_side_data(&frame, AV_FRAME_DATA_DISPLAYMATRIX);
  if (matrix != nullptr) return from_matrix(reinterpret_cast<const int32_t*>(matrix->data));
  const AVDictionaryEntry* const exif = av_dict_get(frame.metadata, "Orientation", nullptr, 0);
  return exif == nullptr ? Orientation{} : from_exif(exif->value);
}

Frame upright(Frame frame, const Orientation& orientation) {
  if (is_upright(orientation)) return frame;
  int width = frame.width();
  int height = frame.height();
  if (orientation.transposes) std::swap(width, height);
  Frame result(width, height, frame.order());
  turn<uint8_t>(frame.luma_row(0), result.luma_row(0), width, height, orientation);
  turn<uint16_t>(frame.chroma_row(0), result.chroma_row(0), width / 2, height / 2, orientation);
  return result;
}

Picture upright(Picture picture, const Orientation& orientation) {
  if (is_upright(orientation)) return picture;
  Picture result = orientation.transposes ? Picture(picture.height, picture.width)
                                          : Picture(picture.width, picture.height);
  turn<std::array<uint8_t, 3>>(picture.rgb.data(), result.rgb.data(), result.width, result.height,
                               orientation);
  return result;
}

}  // namespace zavri::tools
