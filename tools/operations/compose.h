#pragma once

#include "tools/operations/operation.h"

namespace zavri::tools {

// The bands of padding stand at one of these places, which have the numbers of the record's mode.
enum class Pad : uint32_t { kLeft, kRight, kCenter, kBoth };

// Puts two frames of one size side by side at half their size. The library takes frames without
// padding, so that it works on copies without any; the result has none either, and the first
// frame's order of chroma.
class Compose : public Operation {
 public:
  static constexpr char kName[] = "compose";

  int padding = 0;  // columns of all bands together
  Pad pad = Pad::kCenter;

  Settings settings() override;
  Count takes() const override { return {2, 2}; }
  void check(const Size& size, int frames) const override;
  Result run(const Frames& frames, int runs = 1) const override;
};

}  // namespace zavri::tools
