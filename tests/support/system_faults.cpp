#include "tests/support/system_faults.h"

#include <unistd.h>

#include <atomic>

#include "platform/log.h"

namespace zavri::testing {
namespace {

struct Fault {
  std::atomic<int> calls;
  int nth;
  int error;
};

Fault g_faults[static_cast<int>(SystemCall::kEnd)];
std::atomic<pthread_mutex_t*> g_watched;
std::atomic<int> g_threads;

Fault& fault(SystemCall call) { return g_faults[static_cast<int>(call)]; }

// Returns what a call returns instead of its own result.
int outcome(SystemCall call, int result) { return fails(call) ? fault(call).error : result; }

void note(const pthread_mutex_t* mutex, const char* event) {
  if (mutex != nullptr && mutex == g_watched) __android_log_print(0, kWatchTag, "%s", event);
}

}  // namespace

bool fails(SystemCall call) {
  if (fault(call).calls.fetch_add(1) + 1 != fault(call).nth) return false;
  errno = FailCall::kErrnoAfterFailure;
  return true;
}

FailCall::FailCall(SystemCall call, int nth, int error) : call_(call) {
  fault(call).error = error;
  fault(call).nth = nth;
  fault(call).calls = 0;
}

FailCall::~FailCall() { fault(call_).nth = 0; }

int FailCall::calls() const { return fault(call_).calls; }

WatchMutex::WatchMutex(pthread_mutex_t* mutex) { g_watched = mutex; }

WatchMutex::~WatchMutex() { g_watched = nullptr; }

}  // namespace zavri::testing

using namespace zavri::testing;

extern "C" {
int __real_pthread_create(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
int __real_pthread_join(pthread_t, void**);
int __real_pthread_mutex_init(pthread_mutex_t*, const pthread_mutexattr_t*);
int __real_pthread_mutex_destroy(pthread_mutex_t*);
int __real_pthread_mutex_lock(pthread_mutex_t*);
int __real_pthread_mutex_unlock(pthread_mutex_t*);
int __real_pthread_cond_init(pthread_cond_t*, const pthread_condattr_t*);
int __real_pthread_cond_wait(pthread_cond_t*, pthread_mutex_t*);
int __real_pthread_cond_signal(pthread_cond_t*);
int __real_pthread_cond_broadcast(pthread_cond_t*);
int __real_pthread_cond_destroy(pthread_cond_t*);

int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                          void* (*entry)(void*), void* argument) {
  const int failure = outcome(SystemCall::kCreate, 0);
  if (failure != 0) return failure;
  ++g_threads;
  return __real_pthread_create(thread, attributes, entry, argument);
}

int __wrap_pthread_join(pthread_t thread, void** result) {
  const int joined = __real_pthread_join(thread, result);
  --g_threads;
  return outcome(SystemCall::kJoin, joined);
}

int __wrap_pthread_mutex_init(pthread_mutex_t* mutex, const pthread_mutexattr_t* attributes) {
  return outcome(SystemCall::kMutexInit, __real_pthread_mutex_init(mutex, attributes));
}

int __wrap_pthread_mutex_destroy(pthread_mutex_t* mutex) {
  note(mutex, "destroy");
  return outcome(SystemCall::kMutexDestroy, __real_pthread_mutex_destroy(mutex));
}

int __wrap_pthread_mutex_lock(pthread_mutex_t* mutex) {
  const int result = __real_pthread_mutex_lock(mutex);
  note(mutex, "lock");
  return outcome(SystemCall::kMutexLock, result);
}

int __wrap_pthread_mutex_unlock(pthread_mutex_t* mutex) {
  note(mutex, "unlock");
  return outcome(SystemCall::kMutexUnlock, __real_pthread_mutex_unlock(mutex));
}

int __wrap_pthread_cond_init(pthread_cond_t* condition, const pthread_condattr_t* attributes) {
  return outcome(SystemCall::kCondInit, __real_pthread_cond_init(condition, attributes));
}

int __wrap_pthread_cond_wait(pthread_cond_t* condition, pthread_mutex_t* mutex) {
  if (g_threads == 0) _exit(kWaitsForever);
  return outcome(SystemCall::kCondWait, __real_pthread_cond_wait(condition, mutex));
}

int __wrap_pthread_cond_signal(pthread_cond_t* condition) {
  return outcome(SystemCall::kCondSignal, __real_pthread_cond_signal(condition));
}

int __wrap_pthread_cond_broadcast(pthread_cond_t* condition) {
  return outcome(SystemCall::kCondBroadcast, __real_pthread_cond_broadcast(condition));
}

int __wrap_pthread_cond_destroy(pthread_cond_t* condition) {
  note(g_watched, "destroy condition");
  return outcome(SystemCall::kCondDestroy, __real_pthread_cond_destroy(condition));
}
}
