#include "device/processors.h"

#include <sched.h>

#include <atomic>
#include <thread>

#include "include/zavricustpro.h"

namespace zavri::device {

std::vector<int> processors_here() {
  cpu_set_t set;
  CPU_ZERO(&set);
  sched_getaffinity(0, sizeof set, &set);
  std::vector<int> processors;
  for (int i = 0; i < CPU_SETSIZE; ++i) {
    if (CPU_ISSET(i, &set)) processors.push_back(i);
  }
  return processors;
}

void use_processors(const std::vector<int>& processors) {
  HALThreadPoolDestroy();
  cpu_set_t set;
  CPU_ZERO(&set);
  for (const int processor : processors) CPU_SET(processor, &set);
  sched_setaffinity(0, sizeof set, &set);
  HALThreadPoolInit();
}

void run_tasks(int threads, uint32_t count, const std::function<void(uint32_t)>& task) {
  std::atomic<uint32_t> next{0};
  const auto work = [&] {
    for (uint32_t i = next++; i < count; i = next++) task(i);
  };
  std::vector<std::thread> others;
  for (int i = 1; i < threads; ++i) others.emplace_back(work);
  work();
  for (std::thread& other : others) other.join();
}

}  // namespace zavri::device
