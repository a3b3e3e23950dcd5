#pragma once

#include "tools/operations/operation.h"

namespace zavri::tools {

// Denoises the chroma of a frame.
class Chroma : public Operation {
 public:
  static constexpr char kName[] = "chroma";

  int taps = 11;  // of one of the library's windows
  int threshold = kDefaultThreshold;
  double falloff = 0;        // sigma of weights that fall as a Gaussian; 0 is half the threshold
  std::vector<int> weights;  // by difference, instead of the Gaussian's
  bool legacy = false;       // eleven taps with a fixed tolerance instead of threshold and weights
  bool parallel = false;     // all strips at once, on the library's pool

  Settings settings() override;
  void check(const Size& size, int frames) const override;
  Result run(const Frames& frames, int runs = 1) const override;

  // Returns a weight for each difference below the threshold.
  std::vector<int> used_weights() const;

 private:
  static constexpr int kDefaultThreshold = 16;

  std::string weights_file_;
};

}  // namespace zavri::tools
