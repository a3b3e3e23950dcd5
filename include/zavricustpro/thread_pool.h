#ifndef ZAVRICUSTPRO_THREAD_POOL_H_
#define ZAVRICUSTPRO_THREAD_POOL_H_

#include "base.h"

#ifdef __cplusplus
#include <pthread.h>

#include <atomic>
#include <deque>
#include <vector>

extern "C" {
#endif

/* One run of a fan-out's task function: fn(pIn0, pIn1, pOut). Mind the order of the fields. */
typedef struct tagT_ThreadPoolTaskInput {
  const void* pIn0;
  void* pOut;
  const void* pIn1;
} T_ThreadPoolTaskInput;

typedef void (*ThreadPoolTaskFunc)(const void*, const void*, void*);

#ifdef __cplusplus
class ThreadPool;
#else
typedef struct ThreadPool ThreadPool;
#endif

/* The process-wide pool, null before its creation, and 1 once all its threads run. Written only by
 * the two functions below. */
extern ZAVRI_EXPORT ThreadPool* g_threadpool;
extern ZAVRI_EXPORT int32_t g_hal_threadpool_init;

/* Creates the process-wide pool of four threads unless it exists; the heavy operations call it
 * themselves. Returns 0, or -1 when a thread could not be created; the half-started pool is then
 * left behind and the next call builds a fresh one. One thread at a time may call these two, and
 * none while an operation runs. */
ZAVRI_EXPORT int HALThreadPoolInit(void);

/* Stops the pool, joins its threads and frees it; nothing when there is none. Returns 0. */
ZAVRI_EXPORT int HALThreadPoolDestroy(void);

/* Thread entry: runs `pool`'s execute_thread, which does not return. */
ZAVRI_EXPORT void* start_thread(void* pool);

/* Task body of a fan-out: runs the ThreadPoolTaskInfo `info` and counts it as finished. */
ZAVRI_EXPORT void WorkerThreadBase(void* info);

#ifdef __cplusplus
} /* extern "C" */

/* The classes contain containers of the C++ standard library: reach into them only from code built
 * with the same one. */

/* A function and its argument. The pool never frees a task: who queues it owns it. */
class ZAVRI_EXPORT Task {
 public:
  Task(void (*fn)(void*), void* arg);
  ~Task();
  void run();
  void operator()();

  void (*fn)(void*);
  void* arg;
};

/* A mutex with a flag that is set between lock and unlock; waits for a condition leave it alone. */
struct TaskLock {
  TaskLock();
  ~TaskLock();
  void lock();
  void unlock();

  pthread_mutex_t mutex;
  std::atomic<uint8_t> locked;
};

/* Threads fed from one FIFO of tasks. */
class ZAVRI_EXPORT ThreadPool {
 public:
  ThreadPool(); /* 4 threads */
  explicit ThreadPool(int pool_size);
  ThreadPool(const ThreadPool&) = delete;
  ThreadPool& operator=(const ThreadPool&) = delete;
  ~ThreadPool(); /* stops and joins the threads if that has not been done */

  int initialize_threadpool(); /* starts the threads: 0, or -1 at the first that fails */
  int destroy_threadpool();    /* stops and joins; tasks still queued are never run. Returns 0 */
  int add_task(Task* task);    /* any thread; returns 0 */
  void execute_thread();       /* body of every pool thread; does not return */

  int32_t pool_size;
  TaskLock task_lock; /* guards task_queue and pool_state */
  pthread_cond_t task_cond;
  std::vector<pthread_t> threads;
  std::deque<Task*> task_queue;
  int32_t pool_state; /* 0 running, 1 stopped */
};

/* Runs one function over `count` inputs on a pool and waits for all of them. One Work per object.
 */
class ZAVRI_EXPORT ThreadPoolWorker {
 public:
  ThreadPoolWorker(ThreadPool* pool, int count, ThreadPoolTaskFunc fn,
                   T_ThreadPoolTaskInput* inputs); /* inputs[0, count) must outlive Work */
  ThreadPoolWorker(const ThreadPoolWorker&) = delete;
  ThreadPoolWorker& operator=(const ThreadPoolWorker&) = delete;
  ~ThreadPoolWorker();

  int Work(); /* returns 0 after the last run has finished; runs must write disjoint memory */
  void OneTaskFinish();

  pthread_mutex_t worker_lock; /* guards remaining */
  pthread_cond_t worker_cond;
  int32_t task_count;
  int32_t remaining;
  ThreadPoolTaskFunc task_fn;
  T_ThreadPoolTaskInput* task_inputs;
  ThreadPool* pool;
};

/* What a fan-out's task needs to run. */
struct ZAVRI_EXPORT ThreadPoolTaskInfo {
  ThreadPoolTaskInfo(ThreadPoolWorker* worker, ThreadPoolTaskFunc task_fn,
                     T_ThreadPoolTaskInput* task_input);

  ThreadPoolWorker* worker;
  ThreadPoolTaskFunc task_fn;
  T_ThreadPoolTaskInput* task_input;
};
#endif /* __cplusplus */

#endif /* ZAVRICUSTPRO_THREAD_POOL_H_ */
