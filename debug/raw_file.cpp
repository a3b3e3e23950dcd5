#include "debug/raw_file.h"

#include <sys/stat.h>
#include <unistd.h>

namespace zavri {

bool file_exists(const char* path) {
  struct stat status;
  return stat(path, &status) >= 0;
}

int open_raw(const char* path, int flags) { return open(path, flags, 0777); }

void write_raw(int file, const void* bytes, uint32_t size) {
  [[maybe_unused]] const ssize_t ignored = write(file, bytes, size);
}

void read_raw(int file, void* bytes, uint32_t size) {
  [[maybe_unused]] const ssize_t ignored = read(file, bytes, size);
}

}  // namespace zavri
