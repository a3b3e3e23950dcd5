#pragma once

#include <pthread.h>

#include <atomic>
#include <cerrno>
#include <thread>

// The test executable wraps what the library calls of the system, at link time. Calls from its own
// object files pass here, those of shared libraries do not.
namespace zavri::testing {

enum class SystemCall {
  kMalloc,
  kNew,
  kOpen,
  kStat,
  kRead,
  kWrite,
  kClose,
  kTime,
  kCreate,
  kJoin,
  kMutexInit,
  kMutexLock,
  kMutexUnlock,
  kMutexDestroy,
  kCondInit,
  kCondWait,
  kCondSignal,
  kCondBroadcast,
  kCondDestroy,
  kEnd
};

// During its lifetime call number `nth` of one kind, counted from 1, returns `error`, a null
// pointer or -1, and leaves kErrnoAfterFailure in errno. A failing creation creates nothing and a
// failing transfer moves nothing; other calls of threads do their work first, so that no thread or
// lock is lost.
class FailCall {
 public:
  static constexpr int kErrnoAfterFailure = EPERM;

  FailCall(SystemCall call, int nth, int error = EPERM);
  ~FailCall();
  FailCall(const FailCall&) = delete;
  FailCall& operator=(const FailCall&) = delete;

  int calls() const;  // of this kind, up to now

 private:
  SystemCall call_;
};

// Counts a call; tells whether it is the one that fails.
bool fails(SystemCall call);

// What tests record is guarded by a lock that is no call of the system.
class SpinLock {
 public:
  void lock() {
    while (taken_.test_and_set()) std::this_thread::yield();
  }
  void unlock() { taken_.clear(); }

 private:
  std::atomic_flag taken_ = ATOMIC_FLAG_INIT;
};

// A wait in a process that has no thread to end it exits with this status.
inline constexpr int kWaitsForever = 113;

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
