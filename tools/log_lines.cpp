#include "tools/log_lines.h"

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <utility>

#include "platform/log.h"

namespace zavri::tools {
namespace {

std::atomic<bool> g_show{false};
std::atomic<bool> g_keep{false};
std::mutex g_lock;  // of the lines: the library's threads write them, too
std::vector<std::string> g_lines;

}  // namespace

void show_log_lines(bool show) { g_show = show; }

LogKeeper::LogKeeper() { g_keep = true; }
LogKeeper::~LogKeeper() { g_keep = false; }

std::vector<std::string> LogKeeper::take() {
  g_keep = false;
  const std::lock_guard<std::mutex> hold(g_lock);
  return std::exchange(g_lines, {});
}

}  // namespace zavri::tools

extern "C" __attribute__((visibility("default"))) int __android_log_print(int priority,
                                                                          const char* tag,
                                                                          const char* format, ...) {
  using namespace zavri::tools;
  if (!g_show && !g_keep) return 0;
  char text[1024];
  va_list arguments;
  va_start(arguments, format);
  vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  const std::string line =
      std::string(priority == zavri::kLogVerbose ? "V/" : "E/") + tag + ": " + text;
  if (g_keep) {
    const std::lock_guard<std::mutex> hold(g_lock);
    g_lines.push_back(line);
  }
  return g_show ? fprintf(stderr, "%s\n", line.c_str()) : 0;
}
