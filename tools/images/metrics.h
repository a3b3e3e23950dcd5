#pragma once

#include <string>
#include <vector>

#include "tools/images/frame.h"

namespace zavri::tools {

struct PlaneDifference {
  std::string plane;  // "Y", "U", "V"
  double psnr;        // dB; infinite where the planes are equal
  double ssim;        // mean over 8x8 windows, every 4 samples
  int largest;        // absolute difference
};

// Compares Y, U and V of two frames of one size, of any layouts and chroma orders.
std::vector<PlaneDifference> compare(const Frame& a, const Frame& b);

}  // namespace zavri::tools
