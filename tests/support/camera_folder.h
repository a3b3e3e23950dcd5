#pragma once

#include <climits>
#include <cstddef>
#include <ctime>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace zavri::testing {

// Stands for the phone's camera folder during its lifetime; the test executable wraps the calls
// that reach it at link time.
class CameraFolder {
 public:
  CameraFolder();
  ~CameraFolder();
  CameraFolder(const CameraFolder&) = delete;
  CameraFolder& operator=(const CameraFolder&) = delete;

  // Returns a file's bytes, or none when it is not there.
  std::vector<uint8_t> content(const std::string& name);

  const std::filesystem::path folder;
  time_t now = 1000;
  std::optional<int> open_result;  // every open returns this, if set, and opens nothing
  size_t most_bytes = SIZE_MAX;    // one write takes no more
  int opens = 0;
  std::vector<int> flags;  // every open adds its own
  int reads = 0;
  int writes = 0;
  int closes = 0;
};

}  // namespace zavri::testing
