// Uses the public header as a C++ program does, and the classes in the shared object.
#include <type_traits>

#include "zavricustpro.h"

// cxx_linkage.cpp defines these; it knows the pool's free functions with C++ linkage only.
int cxx_init();
int cxx_destroy();
void cxx_run_and_count(void* info);

constexpr size_t kPointer = sizeof(void*);

static_assert(offsetof(Task, fn) == 0 && offsetof(Task, arg) == kPointer);
static_assert(sizeof(Task) == 2 * kPointer && !std::is_polymorphic_v<Task>);

static_assert(offsetof(ThreadPoolTaskInfo, worker) == 0);
static_assert(offsetof(ThreadPoolTaskInfo, task_fn) == kPointer);
static_assert(offsetof(ThreadPoolTaskInfo, task_input) == 2 * kPointer);
static_assert(sizeof(ThreadPoolTaskInfo) == 3 * kPointer);

// The sizes of the pthread types, and so these offsets, belong to the C library.
#define ASSERT_ORDER(type, first, second) \
  static_assert(offsetof(type, first) < offsetof(type, second), #first " before " #second)

ASSERT_ORDER(TaskLock, mutex, locked);

static_assert(offsetof(ThreadPool, pool_size) == 0 && !std::is_polymorphic_v<ThreadPool>);
ASSERT_ORDER(ThreadPool, pool_size, task_lock);
ASSERT_ORDER(ThreadPool, task_lock, task_cond);
ASSERT_ORDER(ThreadPool, task_cond, threads);
ASSERT_ORDER(ThreadPool, threads, task_queue);
ASSERT_ORDER(ThreadPool, task_queue, pool_state);

static_assert(offsetof(ThreadPoolWorker, worker_lock) == 0);
ASSERT_ORDER(ThreadPoolWorker, worker_lock, worker_cond);
ASSERT_ORDER(ThreadPoolWorker, worker_cond, task_count);
ASSERT_ORDER(ThreadPoolWorker, task_count, remaining);
ASSERT_ORDER(ThreadPoolWorker, remaining, task_fn);
ASSERT_ORDER(ThreadPoolWorker, task_fn, task_inputs);
ASSERT_ORDER(ThreadPoolWorker, task_inputs, pool);

namespace {

void count(const void*, const void*, void* runs) { ++*static_cast<int*>(runs); }

}  // namespace

int main() {
  if (cxx_init() != 0 || g_threadpool == nullptr) return 1;

  int runs[9] = {};
  T_ThreadPoolTaskInput inputs[9];
  for (int i = 0; i < 9; ++i) inputs[i] = {nullptr, &runs[i], nullptr};
  ThreadPoolWorker worker(g_threadpool, 8, count, inputs);
  worker.Work();
  for (int i = 0; i < 8; ++i) {
    if (runs[i] != 1) return 1;
  }

  ThreadPoolWorker direct(g_threadpool, 1, count, &inputs[8]);
  ThreadPoolTaskInfo info(&direct, count, &inputs[8]);
  Task task(cxx_run_and_count, &info);
  task();
  if (runs[8] != 1 || direct.remaining != 0) return 1;

  return cxx_destroy() == 0 && g_threadpool == nullptr ? 0 : 1;
}
