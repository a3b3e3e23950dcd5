#include "include/zavricustpro.h"
#include "platform/log.h"
#include "threadpool/mangled_alias.h"

ThreadPool* g_threadpool = nullptr;
int32_t g_hal_threadpool_init = 0;

int HALThreadPoolInit() {
  if (g_hal_threadpool_init != 0) return 0;
  g_threadpool = new ThreadPool;
  if (g_threadpool->initialize_threadpool() != -1) {
    g_hal_threadpool_init = 1;
    return 0;
  }
  // The half-started pool stays: its threads may already wait on it, and the caller goes on to
  // queue its work there. The next call replaces it.
  __android_log_print(zavri::kLogVerbose, zavri::kTagDefog, "Failed to initialize g_threadpool!");
  return -1;
}

int HALThreadPoolDestroy() {
  if (g_hal_threadpool_init != 1) return 0;
  g_threadpool->destroy_threadpool();
  delete g_threadpool;
  g_threadpool = nullptr;
  g_hal_threadpool_init = 0;
  return 0;
}

ZAVRI_MANGLED_ALIAS(int, HALThreadPoolInit, (), "_Z17HALThreadPoolInitv");
ZAVRI_MANGLED_ALIAS(int, HALThreadPoolDestroy, (), "_Z20HALThreadPoolDestroyv");
