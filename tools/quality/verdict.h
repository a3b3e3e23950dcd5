#pragma once

#include <string>
#include <vector>

#include "tools/quality/score.h"

namespace zavri::tools {

// What a denoise made worse than the noisy frame was, and what to try against it: a sentence each.
std::vector<std::string> losses(const Score& before, const Score& after);

}  // namespace zavri::tools
