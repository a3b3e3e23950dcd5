#include "bench/fan_out.h"

#include <sched.h>

namespace zavri::bench {

void use_processors(int count) {
  HALThreadPoolDestroy();
  cpu_set_t set;
  CPU_ZERO(&set);
  for (int i = 0; i < count; ++i) CPU_SET(i, &set);
  sched_setaffinity(0, sizeof set, &set);
  HALThreadPoolInit();
}

void fan_out(ThreadPoolTaskFunc function, const void* param) {
  int32_t strips[kZavriStrips];
  T_ThreadPoolTaskInput inputs[kZavriStrips];
  for (int i = 0; i < kZavriStrips; ++i) {
    strips[i] = i;
    inputs[i] = {&strips[i], nullptr, param};
  }
  ThreadPoolWorker worker(g_threadpool, kZavriStrips, function, inputs);
  worker.Work();
}

}  // namespace zavri::bench
