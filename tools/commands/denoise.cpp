#include "tools/operations/denoise.h"

#include "tools/commands/operate.h"

namespace zavri::tools {
namespace {

Operate<Denoise> g_denoise(
    "merge one to four frames of a scene",
    "denoise frames/frame?_4000x3000.nv12 --thresh 20 --thresh-luma 20 -o out.png");

}  // namespace
}  // namespace zavri::tools
