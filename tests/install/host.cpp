// A host in C++17: runs tasks of its own on the library's pool.
#include <zavricustpro.h>

#include <iostream>

int main() {
  if (HALThreadPoolInit() != 0) return 1;
  int runs[2] = {};
  T_ThreadPoolTaskInput inputs[] = {{nullptr, &runs[0], nullptr}, {nullptr, &runs[1], nullptr}};
  const auto count = [](const void*, const void*, void* run) { ++*static_cast<int*>(run); };
  ThreadPoolWorker(g_threadpool, 2, count, inputs).Work();
  if (runs[0] + runs[1] != 2) return 1;
  HALThreadPoolDestroy();
  std::cout << ZAVRI_VERSION "\n";
}
