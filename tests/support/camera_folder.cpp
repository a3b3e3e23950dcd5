#include "tests/support/camera_folder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdarg>
#include <fstream>
#include <iterator>

#include "tests/support/system_faults.h"

namespace zavri::testing {
namespace {

namespace fs = std::filesystem;

CameraFolder* g_phone = nullptr;

std::string redirected(const char* path) {
  constexpr char kCameraFolder[] = "/data/misc/camera/";
  const std::string text = path;
  const size_t prefix = sizeof kCameraFolder - 1;
  if (g_phone == nullptr || text.compare(0, prefix, kCameraFolder) != 0) return text;
  return g_phone->folder / text.substr(prefix);
}

}  // namespace

CameraFolder::CameraFolder()
    : folder(fs::temp_directory_path() / ("zavri_dumps" + std::to_string(getpid()))) {
  fs::create_directories(folder / "zvcdumpyuv");
  fs::create_directories(folder / "zvcfixedyuv");
  g_phone = this;
}

CameraFolder::~CameraFolder() {
  g_phone = nullptr;
  fs::remove_all(folder);
}

std::vector<uint8_t> CameraFolder::content(const std::string& name) {
  g_phone = nullptr;  // streams of a static C++ library would count, too
  std::ifstream in(folder / name, std::ios::binary);
  std::vector<uint8_t> bytes(std::istreambuf_iterator<char>(in), {});
  in.close();
  g_phone = this;
  return bytes;
}

}  // namespace zavri::testing

using namespace zavri::testing;

extern "C" {
int __real_open(const char*, int, ...);
int __real_stat(const char*, struct stat*);
ssize_t __real_read(int, void*, size_t);
ssize_t __real_write(int, const void*, size_t);
int __real_close(int);
time_t __real_time(time_t*);

int __wrap_open(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  // The type that it is promoted to where mode_t is narrower.
  const int mode = va_arg(arguments, int);
  va_end(arguments);
  if (g_phone == nullptr) return __real_open(path, flags, mode);
  ++g_phone->opens;
  if (fails(SystemCall::kOpen)) return -1;
  g_phone->flags.push_back(flags & ~O_LARGEFILE);
  EXPECT_EQ(mode, 0777);
  return g_phone->open_result ? *g_phone->open_result
                              : __real_open(redirected(path).c_str(), flags, mode);
}
int __wrap_stat(const char* path, struct stat* status) {
  if (g_phone != nullptr && fails(SystemCall::kStat)) return -1;
  return __real_stat(redirected(path).c_str(), status);
}
ssize_t __wrap_read(int file, void* bytes, size_t size) {
  if (g_phone != nullptr) ++g_phone->reads;
  if (g_phone != nullptr && fails(SystemCall::kRead)) return -1;
  return __real_read(file, bytes, size);
}
int __wrap_close(int file) {
  if (g_phone == nullptr) return __real_close(file);
  ++g_phone->closes;
  const int result = __real_close(file);
  return fails(SystemCall::kClose) ? -1 : result;
}
ssize_t __wrap_write(int file, const void* bytes, size_t size) {
  if (g_phone == nullptr) return __real_write(file, bytes, size);
  ++g_phone->writes;
  if (fails(SystemCall::kWrite)) return -1;
  return __real_write(file, bytes, std::min(size, g_phone->most_bytes));
}
// What fortified sources call instead.
ssize_t __wrap___read_chk(int file, void* bytes, size_t size, size_t /*room*/) {
  return __wrap_read(file, bytes, size);
}
ssize_t __wrap___write_chk(int file, const void* bytes, size_t size, size_t /*room*/) {
  return __wrap_write(file, bytes, size);
}
time_t __wrap_time(time_t* to) {
  if (g_phone == nullptr) return __real_time(to);
  return fails(SystemCall::kTime) ? -1 : g_phone->now;
}
}
