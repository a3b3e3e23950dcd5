#pragma once

#include <pthread.h>

#include <cerrno>

// The test executable wraps these pthread functions at link time.
namespace zavri::testing {

enum class PthreadCall { kCreate, kJoin, kMutexInit, kMutexDestroy, kCondInit, kCondDestroy };

// During its lifetime call number `nth`, counted from 1, of one function returns `error` and leaves
// kErrnoAfterFailure in errno. A failing creation creates nothing; the others do their work first,
// so that no thread or lock is lost.
class FailPthread {
 public:
  static constexpr int kErrnoAfterFailure = EPERM;

  FailPthread(PthreadCall call, int nth, int error);
  ~FailPthread();
  FailPthread(const FailPthread&) = delete;
  FailPthread& operator=(const FailPthread&) = delete;

 private:
  PthreadCall call_;
};

// During its lifetime every call that locks, unlocks or destroys `mutex` is a line "lock", "unlock"
// or "destroy" under kWatchTag in the captured log, in its place between the library's own lines:
// "lock" while the mutex is already held, "unlock" while it still is. The destruction of any
// condition variable is a line "destroy condition".
class WatchMutex {
 public:
  explicit WatchMutex(pthread_mutex_t* mutex);
  ~WatchMutex();
  WatchMutex(const WatchMutex&) = delete;
  WatchMutex& operator=(const WatchMutex&) = delete;
};

inline constexpr const char* kWatchTag = "mutex";

}  // namespace zavri::testing
