#include <algorithm>

#include "include/zavricustpro.h"
#include "platform/log.h"
#include "threadpool/mangled_alias.h"

namespace {

void log_failure(int result, const char* text) {
  if (result != 0) __android_log_print(zavri::kLogVerbose, zavri::kTagDefog, "%s", text);
}

}  // namespace

ThreadPoolTaskInfo::ThreadPoolTaskInfo(ThreadPoolWorker* owner, ThreadPoolTaskFunc fn,
                                       T_ThreadPoolTaskInput* input)
    : worker(owner), task_fn(fn), task_input(input) {}

ThreadPoolWorker::ThreadPoolWorker(ThreadPool* on_pool, int count, ThreadPoolTaskFunc fn,
                                   T_ThreadPoolTaskInput* inputs)
    : task_count(count), remaining(count), task_fn(fn), task_inputs(inputs), pool(on_pool) {
  log_failure(pthread_mutex_init(&worker_lock, nullptr), "##### Failed to initialize worker_lock!");
  log_failure(pthread_cond_init(&worker_cond, nullptr), "##### Failed to initialize worker_cond!");
}

ThreadPoolWorker::~ThreadPoolWorker() {
  log_failure(pthread_mutex_destroy(&worker_lock), "##### Failed to destroy worker_lock!");
  log_failure(pthread_cond_destroy(&worker_cond), "##### Failed to destroy worker_cond!");
}

int ThreadPoolWorker::Work() {
  const auto count = static_cast<size_t>(std::max(task_count, 0));
  std::vector<ThreadPoolTaskInfo> infos;
  std::vector<Task> tasks;
  // The pool keeps pointers into both vectors, so neither may grow.
  infos.reserve(count);
  tasks.reserve(count);
  for (size_t i = 0; i < count; ++i) {
    infos.emplace_back(this, task_fn, &task_inputs[i]);
    tasks.emplace_back(WorkerThreadBase, &infos.back());
    pool->add_task(&tasks.back());
  }

  pthread_mutex_lock(&worker_lock);
  while (remaining > 0) pthread_cond_wait(&worker_cond, &worker_lock);
  pthread_mutex_unlock(&worker_lock);
  return 0;
}

void ThreadPoolWorker::OneTaskFinish() {
  pthread_mutex_lock(&worker_lock);
  // The signal is sent under the lock: once that is released, the waiter may destroy this object.
  if (--remaining <= 0) pthread_cond_signal(&worker_cond);
  pthread_mutex_unlock(&worker_lock);
}

void WorkerThreadBase(void* info) {
  const auto& run = *static_cast<const ThreadPoolTaskInfo*>(info);
  const T_ThreadPoolTaskInput& input = *run.task_input;
  run.task_fn(input.pIn0, input.pIn1, input.pOut);
  run.worker->OneTaskFinish();
}

ZAVRI_MANGLED_ALIAS(void, WorkerThreadBase, (void*), "_Z16WorkerThreadBasePv");
