#include "tools/operations/chroma.h"

#include "tools/commands/operate.h"

namespace zavri::tools {
namespace {

Operate<Chroma> g_chroma("denoise the chroma of one frame",
                         "chroma frame_4000x3000.nv12 --taps 19 --threshold 20 -o out.png");

}  // namespace
}  // namespace zavri::tools
