#include "tools/log_lines.h"

#include <atomic>
#include <cstdarg>
#include <cstdio>

#include "platform/log.h"

namespace zavri::tools {
namespace {

std::atomic<bool> g_show{false};

}  // namespace

void show_log_lines(bool show) { g_show = show; }

}  // namespace zavri::tools

extern "C" __attribute__((visibility("default"))) int __android_log_print(int priority,
                                                                          const char* tag,
                                                                          const char* format, ...) {
  if (!zavri::tools::g_show) return 0;
  char text[1024];
  va_list arguments;
  va_start(arguments, format);
  vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  return fprintf(stderr, "%c/%s: %s\n", priority == zavri::kLogVerbose ? 'V' : 'E', tag, text);
}
