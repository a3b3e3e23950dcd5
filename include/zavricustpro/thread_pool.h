/* The thread pool runs the strips of the heavy operations, and of a host that queues its own. */
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

/* A fan-out runs its task function once for each of these, as fn(pIn0, pIn1, pOut). Mind that the
 * fields stand in another order. */
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

/* g_threadpool is the process-wide pool, or null before its creation; g_hal_threadpool_init is 1
 * once all its threads have been created. Only the two functions below write them. */
extern ZAVRI_EXPORT ThreadPool* g_threadpool;
extern ZAVRI_EXPORT int32_t g_hal_threadpool_init;

/* Creates the process-wide pool of four threads unless it exists. The heavy operations call it
 * themselves and ignore the result. One thread at a time may call this function or the next, and
 * none while an operation runs.
 *
 * Returns 0, or -1 when a thread could not be created. The pool then stays with the threads that it
 * got, and a heavy operation works its strips on those; with none it waits forever and holds the
 * processing lock, so that all later heavy operations wait too. Until one call succeeds, each
 * builds a fresh pool and never frees the one before. A host that must never wait calls this
 * function once when it opens the camera, and no heavy operation after a result of -1.
 *
 * When there is no memory for the pool, or for the tasks of a fan-out, the process is aborted. */
ZAVRI_EXPORT int HALThreadPoolInit(void);

/* Stops the pool, joins its threads and frees it, if g_hal_threadpool_init is 1. Tasks that are
 * still queued are never run. Returns 0. */
ZAVRI_EXPORT int HALThreadPoolDestroy(void);

/* Every pool thread enters here: it runs `pool`'s execute_thread, which does not return. */
ZAVRI_EXPORT void* start_thread(void* pool);

/* Every task of a fan-out runs this with its ThreadPoolTaskInfo `info`, and so is counted as
 * finished. */
ZAVRI_EXPORT void WorkerThreadBase(void* info);

#ifdef __cplusplus
} /* extern "C" */

/* The classes contain containers of the C++ standard library: reach into them only from code built
 * with the same one. */

/* A task is a function and its argument. The pool never frees a task: who queues it owns it. */
class ZAVRI_EXPORT Task {
 public:
  Task(void (*fn)(void*), void* arg);
  ~Task();
  void run();
  void operator()();

  void (*fn)(void*);
  void* arg;
};

/* This mutex has a flag that is set between lock and unlock; waits for a condition leave it alone.
 */
struct TaskLock {
  TaskLock();
  ~TaskLock();
  void lock();
  void unlock();

  pthread_mutex_t mutex;
  std::atomic<uint8_t> locked;
};

/* A pool feeds its threads from one FIFO of tasks. */
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

/* A fan-out runs one function over `count` inputs on a pool and waits for all of them. Call Work
 * once per object. */
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

/* This is what a task of a fan-out needs to run. */
struct ZAVRI_EXPORT ThreadPoolTaskInfo {
  ThreadPoolTaskInfo(ThreadPoolWorker* worker, ThreadPoolTaskFunc task_fn,
                     T_ThreadPoolTaskInput* task_input);

  ThreadPoolWorker* worker;
  ThreadPoolTaskFunc task_fn;
  T_ThreadPoolTaskInput* task_input;
};
#endif /* __cplusplus */

#endif /* ZAVRICUSTPRO_THREAD_POOL_H_ */
