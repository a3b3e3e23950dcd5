#pragma once

#include <cstddef>
#include <vector>

// The test executable wraps malloc, calloc and free at link time; calls from its own object files
// pass here, those of shared libraries and of containers do not.
namespace zavri::testing {

// Records the calls of one thread at a time during its lifetime.
class WatchAllocations {
 public:
  static constexpr unsigned char kFill = 0x5c;  // fills the blocks that are handed out

  WatchAllocations();
  ~WatchAllocations();
  WatchAllocations(const WatchAllocations&) = delete;
  WatchAllocations& operator=(const WatchAllocations&) = delete;

  std::vector<size_t> sizes;  // lists what was asked for, in order
  size_t freed = 0;           // counts the calls of free whose pointer is not null
};

}  // namespace zavri::testing
