#include "tests/support/log_capture.h"

#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <ostream>
#include <utility>

#include "platform/log.h"
#include "tests/support/system_faults.h"

namespace zavri::testing {
namespace {

SpinLock g_log_mutex;
std::vector<LogLine> g_lines;

}  // namespace

std::ostream& operator<<(std::ostream& out, const LogLine& line) {
  return out << line.priority << '/' << line.tag << ": " << line.text;
}

std::vector<LogLine> take_log() {
  const std::lock_guard<SpinLock> lock(g_log_mutex);
  return std::exchange(g_lines, {});
}

}  // namespace zavri::testing

extern "C" int __android_log_print(int priority, const char* tag, const char* format, ...) {
  char text[1024];
  va_list arguments;
  va_start(arguments, format);
  const int length = vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  const std::lock_guard<zavri::testing::SpinLock> lock(zavri::testing::g_log_mutex);
  zavri::testing::g_lines.push_back({priority, tag, text});
  return length;
}
