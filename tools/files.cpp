#include "tools/files.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>

#include "tools/error.h"

namespace zavri::tools {
namespace {

struct Close {
  void operator()(FILE* file) const { fclose(file); }
};
using File = std::unique_ptr<FILE, Close>;

Error failure(const std::string& path, const char* what) {
  return Error(path + ": " + what + ": " + strerror(errno));
}

}  // namespace

Bytes read_file(const std::string& path) {
  const File opened(path == "-" ? nullptr : fopen(path.c_str(), "rb"));
  FILE* const file = path == "-" ? stdin : opened.get();
  if (file == nullptr) throw failure(path, "cannot be read");
  Bytes bytes;
  size_t used = 0;
  for (size_t got = 1; got > 0; used += got) {
    if (bytes.size() - used < size_t{1} << 16) bytes.resize(bytes.size() * 2 + (1 << 20));
    got = fread(&bytes[used], 1, bytes.size() - used, file);
  }
  if (ferror(file)) throw failure(path, "cannot be read");
  bytes.resize(used);
  return bytes;
}

void check_output(const std::string& path, bool force) {
  if (path != "-" && !force && std::filesystem::exists(path)) {
    throw Error(path + ": exists; --force overwrites it");
  }
}

void write_file(const std::string& path, const Bytes& bytes) {
  if (path == "-") {
    if (fwrite(bytes.data(), 1, bytes.size(), stdout) != bytes.size() || fflush(stdout) != 0) {
      throw failure(path, "cannot be written");
    }
    return;
  }
  const std::string temporary = path + ".part" + std::to_string(getpid());
  File file(fopen(temporary.c_str(), "wb"));
  if (file == nullptr) throw failure(path, "cannot be written");
  bool written = fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size();
  written &= fclose(file.release()) == 0;
  if (!written || rename(temporary.c_str(), path.c_str()) != 0) {
    const Error error = failure(path, "cannot be written");
    unlink(temporary.c_str());
    throw error;
  }
}

}  // namespace zavri::tools
