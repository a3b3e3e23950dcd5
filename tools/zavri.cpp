// The program `zavri` runs the library's operations on files, for people who tune and check them.
#include <csignal>
#include <cstdio>
#include <new>

#include "tools/command_line.h"
#include "tools/error.h"

int main(int argc, char** argv) {
  // A write beyond the limit of file sizes then fails like one on a full disk; the signal would end
  // the program with a temporary file left.
  std::signal(SIGXFSZ, SIG_IGN);
  try {
    return zavri::tools::run_command_line(argc, argv);
  } catch (const zavri::tools::Error& error) {
    std::fprintf(stderr, "zavri: %s\n", error.what());
    return error.status;
  } catch (const std::bad_alloc&) {
    std::fprintf(stderr, "zavri: not enough memory; smaller or fewer frames would need less\n");
  } catch (const std::exception& error) {
    std::fprintf(stderr, "zavri: %s\n", error.what());
  }
  return zavri::tools::kBadInput;
}
