#include "tools/operations/rnr.h"

#include "tools/commands/operate.h"

namespace zavri::tools {
namespace {

Operate<Rnr> g_rnr("blur the luma the more, the farther from the centre",
                   "rnr frame_4000x3000.nv12 --radius 90 --strength 70 -o out.png");

}  // namespace
}  // namespace zavri::tools
