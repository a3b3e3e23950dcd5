#include <errno.h>
#include <string.h>

#include "include/zavricustpro.h"
#include "platform/log.h"

using zavri::kLogVerbose;
using zavri::kTagDefog;

namespace {

enum PoolState : int32_t { kRunning = 0, kStopped = 1 };

}  // namespace

Task::Task(void (*function)(void*), void* argument) : fn(function), arg(argument) {}

Task::~Task() = default;

void Task::run() { fn(arg); }

void Task::operator()() { run(); }

TaskLock::TaskLock() : locked(0) { pthread_mutex_init(&mutex, nullptr); }

// Whoever still holds the lock is waited for. The unlock of a mutex that nobody holds is part of
// the design: after it the mutex is free whatever happened before.
TaskLock::~TaskLock() {
  while (locked.load() != 0) {
  }
  locked = 0;
  pthread_mutex_unlock(&mutex);
  pthread_mutex_destroy(&mutex);
}

void TaskLock::lock() {
  pthread_mutex_lock(&mutex);
  locked = 1;
}

void TaskLock::unlock() {
  locked = 0;
  pthread_mutex_unlock(&mutex);
}

ThreadPool::ThreadPool() : ThreadPool(4) {}

ThreadPool::ThreadPool(int size) : pool_size(size), pool_state(kRunning) {
  pthread_cond_init(&task_cond, nullptr);
  __android_log_print(kLogVerbose, kTagDefog, "Constructed ThreadPool of size %d.", pool_size);
}

ThreadPool::~ThreadPool() {
  if (pool_state != kStopped) destroy_threadpool();
  // The containers' storage goes before the condition variable, the lock after it.
  std::deque<Task*>().swap(task_queue);
  std::vector<pthread_t>().swap(threads);
  pthread_cond_destroy(&task_cond);
}

int ThreadPool::initialize_threadpool() {
  pool_state = kRunning;
  for (int i = 0; i < pool_size; ++i) {
    pthread_t thread;
    const int result = pthread_create(&thread, nullptr, start_thread, this);
    if (result != 0) {
      __android_log_print(kLogVerbose, kTagDefog, "pthread_create() failed: %d.", result);
      return -1;
    }
    threads.push_back(thread);
  }
  __android_log_print(kLogVerbose, kTagDefog, "%d threads created by the thread pool", pool_size);
  return 0;
}

int ThreadPool::destroy_threadpool() {
  task_lock.lock();
  pool_state = kStopped;
  task_lock.unlock();
  __android_log_print(kLogVerbose, kTagDefog, "Broadcasting STOP signal to all threads...");
  pthread_cond_broadcast(&task_cond);
  // A half-started pool has fewer threads than its size.
  for (size_t i = 0; i < threads.size(); ++i) {
    const int result = pthread_join(threads[i], nullptr);
    if (result != 0) {
      // The text is errno's on purpose, not that of the result.
      __android_log_print(kLogVerbose, kTagDefog, "pthread_join() returned %d: %s", result,
                          strerror(errno));
    }
    pthread_cond_broadcast(&task_cond);
  }
  __android_log_print(kLogVerbose, kTagDefog, "%d threads exited from the thread pool", pool_size);
  return 0;
}

int ThreadPool::add_task(Task* task) {
  task_lock.lock();
  task_queue.push_back(task);
  pthread_cond_signal(&task_cond);
  task_lock.unlock();
  return 0;
}

void ThreadPool::execute_thread() {
  for (;;) {
    task_lock.lock();
    while (pool_state != kStopped && task_queue.empty()) {
      pthread_cond_wait(&task_cond, &task_lock.mutex);
    }
    // The stop flag wins over queued work, so that a pool stops after the tasks that run now.
    if (pool_state == kStopped) {
      task_lock.unlock();
      pthread_exit(nullptr);
    }
    Task* const task = task_queue.front();
    task_queue.pop_front();
    task_lock.unlock();
    // Once a task has run, its owner may have freed it.
    task->run();
  }
}

void* start_thread(void* pool) {
  static_cast<ThreadPool*>(pool)->execute_thread();
  return nullptr;
}
