#pragma once

#include <cstdint>
#include <functional>
#include <vector>

namespace zavri::device {

// Returns the processors on which this process may run.
std::vector<int> processors_here();

// Restarts the library's pool with its four threads, and binds these, the calling thread and those
// that it starts to the given processors.
void use_processors(const std::vector<int>& processors);

// Runs task(0) .. task(count - 1) on a number of threads, each of which takes the next one left.
void run_tasks(int threads, uint32_t count, const std::function<void(uint32_t)>& task);

}  // namespace zavri::device
