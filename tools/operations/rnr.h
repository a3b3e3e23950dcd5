#pragma once

#include "tools/operations/operation.h"

namespace zavri::tools {

// Blurs the luma the more, the farther from the centre, with the tiles on the library's pool.
class Rnr : public Operation {
 public:
  static constexpr char kName[] = "rnr";

  int radius = 100;   // percent of a corner's squared distance, where the blur is full
  int strength = 80;  // percent of the way to the blurred value there

  Settings settings() override;
  void check(const Size& size, int frames) const override;
  // Its figure "tables_milliseconds" is that of the tables, which are built once for a size.
  Result run(const Frames& frames, int runs = 1) const override;
};

}  // namespace zavri::tools
