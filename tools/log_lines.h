#pragma once

namespace zavri::tools {

// The program defines the Android log's function, so that the library's lines go to stderr, and
// only when somebody wants to see them.
void show_log_lines(bool show);

}  // namespace zavri::tools
