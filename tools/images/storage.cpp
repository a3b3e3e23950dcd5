#include "tools/images/storage.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <system_error>

#include "tools/error.h"

namespace zavri::tools {
namespace {

namespace fs = std::filesystem;

struct Close {
  void operator()(FILE* file) const { fclose(file); }
};
using File = std::unique_ptr<FILE, Close>;

Error failure(const std::string& path, const char* what, int code) {
  return Error(path + ": " + what + ": " + strerror(code));
}

Error write_failure(const std::string& path) { return failure(path, "cannot be written", errno); }

// Throws, with `path` in the text, unless all bytes are written; closes the file.
void write_all(File file, const Bytes& bytes, const std::string& path) {
  // An empty vector may have a null pointer, which fwrite() must not be given.
  bool written = bytes.empty() || fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size();
  written = fflush(file.get()) == 0 && written;
  const int code = errno;
  if (fclose(file.release()) != 0 || !written) {
    throw failure(path, "cannot be written", written ? errno : code);
  }
}

// Returns what a chain of symbolic links names, whether it exists or not.
std::string target_of(const std::string& path) {
  constexpr int kMostLinks = 40;  // the kernel's own limit
  fs::path target = path;
  std::error_code error;
  for (int k = 0; k < kMostLinks && fs::is_symlink(target, error); ++k) {
    target = target.parent_path() / fs::read_symlink(target, error);
  }
  return target;
}

// Writes a file beside the target and renames it, with the mode of the one that it replaces.
void replace(const std::string& target, const Bytes& bytes, const std::string& path,
             const struct stat* replaced) {
  const std::string temporary = target + ".part" + std::to_string(getpid());
  File file(fopen(temporary.c_str(), "wb"));
  if (file == nullptr) throw write_failure(path);
  try {
    if (replaced != nullptr && fchmod(fileno(file.get()), replaced->st_mode & 07777) != 0) {
      throw write_failure(path);
    }
    write_all(std::move(file), bytes, path);
    if (rename(temporary.c_str(), target.c_str()) != 0) throw write_failure(path);
  } catch (const Error&) {
    unlink(temporary.c_str());
    throw;
  }
}

}  // namespace

Bytes read_file(const std::string& path) {
  const File opened(path == "-" ? nullptr : fopen(path.c_str(), "rb"));
  FILE* const file = path == "-" ? stdin : opened.get();
  if (file == nullptr) throw failure(path, "cannot be read", errno);
  Bytes bytes;
  size_t used = 0;
  for (size_t got = 1; got > 0; used += got) {
    if (bytes.size() - used < size_t{1} << 16) bytes.resize(bytes.size() * 2 + (1 << 20));
    got = fread(&bytes[used], 1, bytes.size() - used, file);
  }
  if (ferror(file)) throw failure(path, "cannot be read", errno);
  bytes.resize(used);
  return bytes;
}

void check_file(const std::string& path, bool force) {
  if (path == "-") return;
  const fs::path folder = fs::path(target_of(path)).parent_path();
  std::error_code error;
  if (!folder.empty() && !fs::is_directory(folder, error)) {
    throw Error(path + ": there is no folder " + folder.string());
  }
  if (!fs::exists(path, error)) return;
  if (fs::is_directory(path, error)) throw Error(path + ": is a folder; name a file");
  if (!force) throw Error(path + ": exists; --force overwrites it");
}

void make_folder(const std::string& folder) {
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) throw Error(folder + ": cannot be created: " + error.message());
}

void write_file(const std::string& path, const Bytes& bytes) {
  if (path == "-") {
    if (fwrite(bytes.data(), 1, bytes.size(), stdout) != bytes.size() || fflush(stdout) != 0) {
      throw write_failure(path);
    }
    return;
  }
  const std::string target = target_of(path);
  struct stat status;
  const bool exists = stat(target.c_str(), &status) == 0;
  if (!exists || S_ISREG(status.st_mode)) {
    replace(target, bytes, path, exists ? &status : nullptr);
    return;
  }
  const int descriptor = open(target.c_str(), O_WRONLY | O_CLOEXEC);
  if (descriptor < 0) throw write_failure(path);
  File file(fdopen(descriptor, "wb"));
  if (file == nullptr) throw write_failure(path);
  write_all(std::move(file), bytes, path);
}

}  // namespace zavri::tools
