#include "tools/operations/resize.h"

#include "tools/commands/operate.h"

namespace zavri::tools {
namespace {

Operate<Resize> g_resize("enlarge a frame",
                         "resize frame_1920x1080.nv12 --to 3840x2160 -o out.png");

}  // namespace
}  // namespace zavri::tools
