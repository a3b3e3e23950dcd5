#pragma once

#include "tools/operations/operation.h"

namespace zavri::tools {

// The scalers have the numbers of the record's scale_mode.
enum class Scaling : uint16_t { kPoly, kBilinear };

// Enlarges a frame. The result has no padding behind its planes, and its rows have none unless the
// frame's stride is larger: the library takes no destination with a smaller stride.
class Resize : public Operation {
 public:
  static constexpr char kName[] = "resize";

  Size to;
  Scaling scaling = Scaling::kPoly;

  Settings settings() override;
  void check(const Size& size, int frames) const override;
  Size result_size(const Size&) const override { return to; }
  Result run(const Frames& frames, int runs = 1) const override;
};

}  // namespace zavri::tools
