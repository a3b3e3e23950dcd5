#pragma once

#include "platform/fastcv.h"

namespace zavri::device {

// The three functions of the vendor's library that the library calls.
struct Scaler {
  decltype(&fcvScaleu8) scale;
  decltype(&fcvScaleUpPolyu8) scale_up_poly;
  decltype(&fcvFilterGaussian5x5u8) gaussian;
};

// Those of the libfastcvopt.so that is loaded.
Scaler loaded_scaler();

// Those that workstations have, as a part of this program.
Scaler portable_scaler();

// The program stands between the library and the Gaussian: which one is called from now on. At
// first it is the one that is loaded.
void use_gaussian(decltype(Scaler::gaussian) gaussian);

}  // namespace zavri::device
