#pragma once

#include "platform/fastcv.h"

namespace zavri::device {

// Holds the three functions of the vendor's library that the library calls.
struct Scaler {
  decltype(&fcvScaleu8) scale;
  decltype(&fcvScaleUpPolyu8) scale_up_poly;
  decltype(&fcvFilterGaussian5x5u8) gaussian;
};

// Returns the functions of the libfastcvopt.so that is loaded.
Scaler loaded_scaler();

// Returns the functions that workstations have, as a part of this program.
Scaler portable_scaler();

// Chooses the Gaussian that the library's calls reach from now on: the program stands between them
// and the one that is loaded, which is the first choice.
void use_gaussian(decltype(Scaler::gaussian) gaussian);

}  // namespace zavri::device
