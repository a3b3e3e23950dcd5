#include "compose/padding.h"

#include <cstring>

#include "compose/decimate.h"

namespace zavri {
namespace {

enum class Share { kNone, kHalf, kAll };

// A placement says which share of the padding each band of a row takes:
//
//   | left | frame 1 | middle | frame 2 | right |
struct Placement {
  Share left;
  Share middle;
  Share right;
};

// The index is the mode.
constexpr Placement kPlacements[kPaddingModes] = {
    {Share::kAll, Share::kNone, Share::kNone},
    {Share::kNone, Share::kNone, Share::kAll},
    {Share::kNone, Share::kAll, Share::kNone},
    {Share::kHalf, Share::kNone, Share::kHalf},
};

struct Band {
  int column;
  int bytes;
};

// The columns of a row of the picture are the same for luma and chroma.
struct RowLayout {
  RowLayout(const T_ComposeParam& param, const Placement& placement);

  Band left;
  int frame1;
  Band middle;
  int frame2;
  Band right;
  int frame_bytes;  // how many bytes of a row come from each frame
  int picture_row;  // how far writing a row moves on in the picture
  int source_row;   // how far reading a row moves on in a source
};

RowLayout::RowLayout(const T_ComposeParam& param, const Placement& placement) {
  const auto band_bytes = [&](Share share) {
    if (share == Share::kNone) return 0;
    return share == Share::kAll ? param.padding : param.padding >> 1;
  };
  const int used = param.width - param.padding;  // columns of a source
  const int span = used / 2;
  frame_bytes = used < 4 ? 0 : used / 4 * 2;
  left = {0, band_bytes(placement.left)};
  frame1 = left.bytes;
  middle = {frame1 + span, band_bytes(placement.middle)};
  frame2 = middle.column + middle.bytes;
  right = {frame2 + frame_bytes, band_bytes(placement.right)};
  picture_row = right.column + right.bytes;
  source_row = 2 * frame_bytes + param.padding;
  // Less than 4 columns are too narrow for the frames: only the bands are drawn, each in its place.
  if (frame_bytes == 0) {
    right.column = frame2 + span;
    picture_row = param.width;
  }
}

void write_row(uint8_t* to, const RowLayout& layout, uint8_t black, const uint8_t* from1,
               const uint8_t* from2, DecimateFunction decimate) {
  for (const Band& band : {layout.left, layout.middle, layout.right}) {
    memset(to + band.column, black, static_cast<size_t>(band.bytes));
  }
  const auto bytes = static_cast<size_t>(layout.frame_bytes);
  decimate(to + layout.frame1, from1, bytes);
  decimate(to + layout.frame2, from2, bytes);
}

}  // namespace

// Of every four luma rows of a source the second and the fourth are taken, of every two chroma rows
// the second. Positions run on from where the last row ended. If width - padding is no multiple of
// 4 that is short of the next row, and the picture slides: at 66 columns without padding a row of
// 33 and 32 bytes is a byte short, so that each pair of luma rows begins a byte further left than
// the one above.
void fill_picture(const T_ComposeParam& param, uint32_t mode, uint8_t* luma, uint8_t* chroma) {
  const DecimateKernels& decimate = decimate_kernels();
  const RowLayout layout(param, kPlacements[mode]);
  const ptrdiff_t width = param.width;
  const auto write = [&](uint8_t* to, ptrdiff_t from, uint8_t black, DecimateFunction samples) {
    write_row(to, layout, black, param.src_frame1 + from, param.src_frame2 + from, samples);
  };
  ptrdiff_t luma_from = width;
  ptrdiff_t chroma_from = width * param.height + width;
  for (int k = 0; k < param.height / 4; ++k) {
    write(luma, luma_from, kBlackLuma, decimate.luma);
    write(luma + width, luma_from + 2 * width, kBlackLuma, decimate.luma);
    write(chroma, chroma_from, kBlackChroma, decimate.chroma);
    luma += width + layout.picture_row;
    chroma += layout.picture_row;
    luma_from += 3 * width + layout.source_row;
    chroma_from += width + layout.source_row;
  }
}

bool fill_covers_picture(const T_ComposeParam& param, uint32_t mode) {
  if (mode >= kPaddingModes || param.height % 4 != 0) return false;
  const int used = param.width - param.padding;
  const bool whole_bands = mode != kPaddingLeftRight || param.padding % 2 == 0;
  return used >= 0 && used % 4 == 0 && whole_bands;
}

}  // namespace zavri

namespace {

// A scratch frame holds the chroma right behind the luma.
void fill_scratch(const T_ComposeParam& param, uint32_t mode, uint8_t* scratch) {
  const uint32_t pixels = uint32_t{param.width} * param.height;
  zavri::fill_picture(param, mode, scratch, scratch + (pixels >> 1));
}

}  // namespace

void zavri_mp_compose_two_same_frame_padding_left(T_ComposeParam* param, uint8_t* scratch) {
  fill_scratch(*param, zavri::kPaddingLeft, scratch);
}

void zavri_mp_compose_two_same_frame_padding_right(T_ComposeParam* param, uint8_t* scratch) {
  fill_scratch(*param, zavri::kPaddingRight, scratch);
}

void zavri_mp_compose_two_same_frame_padding_center(T_ComposeParam* param, uint8_t* scratch) {
  fill_scratch(*param, zavri::kPaddingCenter, scratch);
}

void zavri_mp_compose_two_same_frame_padding_left_right(T_ComposeParam* param, uint8_t* scratch) {
  fill_scratch(*param, zavri::kPaddingLeftRight, scratch);
}
