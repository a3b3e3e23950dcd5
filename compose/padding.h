#pragma once

#include "include/zavricustpro.h"

namespace zavri {

// Bars and bands have these samples. The chroma is 129 on purpose, one above neutral.
inline constexpr uint8_t kBlackLuma = 0;
inline constexpr uint8_t kBlackChroma = 129;

// T_ComposeParam::mode has one of these values; others are allowed there.
enum PaddingMode : uint32_t {
  kPaddingLeft,
  kPaddingRight,
  kPaddingCenter,
  kPaddingLeftRight,
  kPaddingModes
};

// Writes the picture, which is both reduced frames with their bands: height / 2 rows of luma and
// height / 4 rows of chroma, all `width` bytes. `mode`, below kPaddingModes, is used instead of the
// record's.
void fill_picture(const T_ComposeParam& param, uint32_t mode, uint8_t* luma, uint8_t* chroma);

// Tells whether fill_picture writes every byte of the picture; false for other modes.
bool fill_covers_picture(const T_ComposeParam& param, uint32_t mode);

}  // namespace zavri
