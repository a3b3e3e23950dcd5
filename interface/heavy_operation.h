#pragma once

#include <pthread.h>

#include "include/zavricustpro.h"
#include "platform/log.h"

// A heavy operation holds this processing lock from before the pool is ensured until its last strip
// has finished: so one such operation runs at a time, and HALThreadPoolInit never runs twice at
// once.
extern pthread_mutex_t g_mp_process_lock;

namespace zavri {

// Runs a heavy operation under the processing lock: `prepare(inputs)` fills one input for each
// strip, then the pool calls `strip` for all of them. `end_line` is logged once the lock is
// released; the worker goes after that.
template <class Prepare>
void run_heavy_operation(ThreadPoolTaskFunc strip, Prepare prepare, const char* end_line) {
  pthread_mutex_lock(&g_mp_process_lock);
  // A failure is no reason to stop: one thread is enough for all strips. Without any, Work never
  // returns, and the lock is never released.
  HALThreadPoolInit();
  T_ThreadPoolTaskInput inputs[kZavriStrips];
  prepare(inputs);
  ThreadPoolWorker worker(g_threadpool, kZavriStrips, strip, inputs);
  worker.Work();
  pthread_mutex_unlock(&g_mp_process_lock);
  __android_log_print(kLogError, kTagProcessing, "%s", end_line);
}

}  // namespace zavri
