#include "tests/support/thread_faults.h"

#include <atomic>

#include "platform/log.h"

namespace zavri::testing {
namespace {

struct Fault {
  std::atomic<int> calls_left;  // counts down to the one that fails
  int error;
};

Fault g_faults[6];
std::atomic<pthread_mutex_t*> g_watched;

Fault& fault(PthreadCall call) { return g_faults[static_cast<int>(call)]; }

// Returns what a call returns instead of its own result.
int outcome(PthreadCall call, int result) {
  if (fault(call).calls_left.fetch_sub(1) != 1) return result;
  errno = FailPthread::kErrnoAfterFailure;
  return fault(call).error;
}

void note(const pthread_mutex_t* mutex, const char* event) {
  if (mutex != nullptr && mutex == g_watched) __android_log_print(0, kWatchTag, "%s", event);
}

}  // namespace

FailPthread::FailPthread(PthreadCall call, int nth, int error) : call_(call) {
  fault(call).error = error;
  fault(call).calls_left = nth;
}

FailPthread::~FailPthread() { fault(call_).calls_left = 0; }

WatchMutex::WatchMutex(pthread_mutex_t* mutex) { g_watched = mutex; }

WatchMutex::~WatchMutex() { g_watched = nullptr; }

}  // namespace zavri::testing

using zavri::testing::g_watched;
using zavri::testing::note;
using zavri::testing::outcome;
using zavri::testing::PthreadCall;

extern "C" {
int __real_pthread_create(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
int __real_pthread_join(pthread_t, void**);
int __real_pthread_mutex_init(pthread_mutex_t*, const pthread_mutexattr_t*);
int __real_pthread_mutex_destroy(pthread_mutex_t*);
int __real_pthread_mutex_lock(pthread_mutex_t*);
int __real_pthread_mutex_unlock(pthread_mutex_t*);
int __real_pthread_cond_init(pthread_cond_t*, const pthread_condattr_t*);
int __real_pthread_cond_destroy(pthread_cond_t*);

int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                          void* (*entry)(void*), void* argument) {
  const int failure = outcome(PthreadCall::kCreate, 0);
  return failure != 0 ? failure : __real_pthread_create(thread, attributes, entry, argument);
}

int __wrap_pthread_join(pthread_t thread, void** result) {
  return outcome(PthreadCall::kJoin, __real_pthread_join(thread, result));
}

int __wrap_pthread_mutex_init(pthread_mutex_t* mutex, const pthread_mutexattr_t* attributes) {
  return outcome(PthreadCall::kMutexInit, __real_pthread_mutex_init(mutex, attributes));
}

int __wrap_pthread_mutex_destroy(pthread_mutex_t* mutex) {
  note(mutex, "destroy");
  return outcome(PthreadCall::kMutexDestroy, __real_pthread_mutex_destroy(mutex));
}

int __wrap_pthread_mutex_lock(pthread_mutex_t* mutex) {
  const int result = __real_pthread_mutex_lock(mutex);
  note(mutex, "lock");
  return result;
}

int __wrap_pthread_mutex_unlock(pthread_mutex_t* mutex) {
  note(mutex, "unlock");
  return __real_pthread_mutex_unlock(mutex);
}

int __wrap_pthread_cond_init(pthread_cond_t* condition, const pthread_condattr_t* attributes) {
  return outcome(PthreadCall::kCondInit, __real_pthread_cond_init(condition, attributes));
}

int __wrap_pthread_cond_destroy(pthread_cond_t* condition) {
  note(g_watched, "destroy condition");
  return outcome(PthreadCall::kCondDestroy, __real_pthread_cond_destroy(condition));
}
}
