#pragma once

#include "tools/images/frame.h"
#include "tools/report/parts.h"

namespace zavri::tools {

// Parts of the frames before, after and clean beside each other, at 1:1 and below that at 3:1, with
// their PSNR on them. The clean frame must be there. Without its font the picture has no text.
Picture draw_tiles(const Versions& versions);

}  // namespace zavri::tools
