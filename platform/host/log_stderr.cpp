// This function stands in for liblog where a target has none: each call is a line on stderr.
#include <cstdarg>
#include <cstdio>

#include "platform/log.h"

extern "C" __attribute__((visibility("default"))) int __android_log_print(int priority,
                                                                          const char* tag,
                                                                          const char* format, ...) {
  constexpr char kLetters[] = "??VDIWEFS";
  const char letter = priority >= 0 && priority < 9 ? kLetters[priority] : '?';
  char text[1024];
  va_list arguments;
  va_start(arguments, format);
  vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  return fprintf(stderr, "%c/%s: %s\n", letter, tag, text);
}
