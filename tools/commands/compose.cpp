#include "tools/operations/compose.h"

#include "tools/commands/operate.h"

namespace zavri::tools {
namespace {

Operate<Compose> g_compose("two frames side by side at half their size",
                           "compose a.png b.png --pad center --padding 32 -o both.png");

}  // namespace
}  // namespace zavri::tools
