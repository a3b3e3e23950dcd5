#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <thread>

#include "include/zavricustpro.h"
#include "platform/log.h"
#include "tests/support/log_capture.h"
#include "tests/support/system_faults.h"

namespace zavri::testing {
namespace {

std::vector<LogLine> pool_lines(std::initializer_list<std::string> texts) {
  std::vector<LogLine> lines;
  for (const std::string& text : texts) lines.push_back({kLogVerbose, kTagDefog, text});
  return lines;
}

LogLine watch_line(const char* event) { return {0, kWatchTag, event}; }

constexpr char kConstructed[] = "Constructed ThreadPool of size 4.";
constexpr char kCreated[] = "4 threads created by the thread pool";
constexpr char kStopping[] = "Broadcasting STOP signal to all threads...";
constexpr char kExited[] = "4 threads exited from the thread pool";

void count_run(const void*, const void*, void* count) { ++*static_cast<int*>(count); }

// Fans `count` runs out; each must have been run exactly once when Work returns.
void expect_each_runs_once(ThreadPool* pool, int count) {
  std::vector<int> runs(static_cast<size_t>(count), 0);
  std::vector<T_ThreadPoolTaskInput> inputs(runs.size());
  for (size_t i = 0; i < runs.size(); ++i) inputs[i] = {nullptr, &runs[i], nullptr};
  ThreadPoolWorker worker(pool, count, count_run, inputs.data());
  EXPECT_EQ(worker.Work(), 0);
  EXPECT_EQ(runs, std::vector<int>(runs.size(), 1));
}

class ProcessPool : public ::testing::Test {
 protected:
  ProcessPool() {
    HALThreadPoolDestroy();
    take_log();
  }
  ~ProcessPool() override { HALThreadPoolDestroy(); }
};

TEST_F(ProcessPool, LivesFromInitToDestroy) {
  EXPECT_EQ(HALThreadPoolDestroy(), 0);  // there is no pool yet
  EXPECT_EQ(take_log(), pool_lines({}));

  EXPECT_EQ(HALThreadPoolInit(), 0);
  EXPECT_EQ(take_log(), pool_lines({kConstructed, kCreated}));
  EXPECT_EQ(g_hal_threadpool_init, 1);
  ThreadPool* const pool = g_threadpool;
  ASSERT_NE(pool, nullptr);
  EXPECT_EQ(pool->threads.size(), 4u);

  EXPECT_EQ(HALThreadPoolInit(), 0);
  EXPECT_EQ(g_threadpool, pool);
  EXPECT_EQ(take_log(), pool_lines({}));

  for (const auto& lines : {pool_lines({kStopping, kExited}), pool_lines({})}) {
    EXPECT_EQ(HALThreadPoolDestroy(), 0);
    EXPECT_EQ(g_threadpool, nullptr);
    EXPECT_EQ(g_hal_threadpool_init, 0);
    EXPECT_EQ(take_log(), lines);
  }
}

TEST_F(ProcessPool, LeavesAHalfStartedPoolAndReplacesItNextTime) {
  for (int failing = 1; failing <= 4; ++failing) {
    SCOPED_TRACE(failing);
    {
      const FailCall fail(SystemCall::kCreate, failing, 11);
      EXPECT_EQ(HALThreadPoolInit(), -1);
    }
    EXPECT_EQ(take_log(), pool_lines({kConstructed, "pthread_create() failed: 11.",
                                      "Failed to initialize g_threadpool!"}));
    ThreadPool* const half = g_threadpool;
    ASSERT_NE(half, nullptr);
    EXPECT_EQ(half->threads.size(), static_cast<size_t>(failing - 1));
    EXPECT_EQ(g_hal_threadpool_init, 0);
    if (failing > 1) expect_each_runs_once(half, 9);

    EXPECT_EQ(HALThreadPoolDestroy(), 0);  // a half-started pool does not count
    EXPECT_EQ(g_threadpool, half);
    EXPECT_EQ(take_log(), pool_lines({}));

    EXPECT_EQ(HALThreadPoolInit(), 0);
    EXPECT_NE(g_threadpool, half);
    EXPECT_EQ(take_log(), pool_lines({kConstructed, kCreated}));
    delete half;
    EXPECT_EQ(take_log(), pool_lines({kStopping, kExited}));
    HALThreadPoolDestroy();
    take_log();
  }
}

TEST(ThreadPool, JoinFailureShowsTheTextOfErrno) {
  ThreadPool pool(3);
  ASSERT_EQ(pool.initialize_threadpool(), 0);
  take_log();
  const FailCall fail(SystemCall::kJoin, 2, 3);
  EXPECT_EQ(pool.destroy_threadpool(), 0);
  const std::string text = strerror(FailCall::kErrnoAfterFailure);
  EXPECT_EQ(take_log(), pool_lines({kStopping, "pthread_join() returned 3: " + text,
                                    "3 threads exited from the thread pool"}));
}

TEST(ThreadPool, OfNoThreadsRunsNothing) {
  int runs = 0;
  Task task([](void* count) { ++*static_cast<int*>(count); }, &runs);
  auto pool = std::make_unique<ThreadPool>(0);
  EXPECT_EQ(pool->initialize_threadpool(), 0);
  EXPECT_EQ(take_log(), pool_lines({"Constructed ThreadPool of size 0.",
                                    "0 threads created by the thread pool"}));
  const WatchMutex watch(&pool->task_lock.mutex);
  EXPECT_EQ(pool->add_task(&task), 0);
  pool.reset();
  const LogLine lock = watch_line("lock");
  const LogLine unlock = watch_line("unlock");
  const auto stopping = pool_lines({kStopping, "0 threads exited from the thread pool"});
  EXPECT_EQ(take_log(),
            (std::vector<LogLine>{lock, unlock, lock, unlock, stopping[0], stopping[1],
                                  watch_line("destroy condition"), unlock, watch_line("destroy")}));
  EXPECT_EQ(runs, 0);
  task.run();
  task();
  EXPECT_EQ(runs, 2);
}

TEST(TaskLock, DestructorWaitsUntilNobodyHoldsIt) {
  auto* const lock = new TaskLock;
  lock->lock();
  EXPECT_EQ(lock->locked, 1);
  lock->unlock();
  EXPECT_EQ(lock->locked, 0);

  const WatchMutex watch(&lock->mutex);
  take_log();
  lock->locked = 1;
  std::atomic<bool> destroying{false};
  std::thread destroyer([&] {
    destroying = true;
    delete lock;
  });
  while (!destroying) std::this_thread::yield();
  __android_log_print(0, kWatchTag, "release");
  lock->locked = 0;
  destroyer.join();
  EXPECT_EQ(take_log(), (std::vector<LogLine>{watch_line("release"), watch_line("unlock"),
                                              watch_line("destroy")}));
}

// This task runs until its pool has been told to stop.
struct UntilStopped {
  ThreadPool* pool;
  std::atomic<bool> started{false};
  bool finished = false;

  static void run(void* self) { static_cast<UntilStopped*>(self)->run(); }
  void run() {
    started = true;
    for (bool stopped = false; !stopped; std::this_thread::yield()) {
      pool->task_lock.lock();
      stopped = pool->pool_state == 1;
      pool->task_lock.unlock();
    }
    finished = true;
  }
};

TEST(ThreadPool, StopFinishesTheRunningTaskAndAbandonsTheQueue) {
  ThreadPool pool(1);
  ASSERT_EQ(pool.initialize_threadpool(), 0);
  UntilStopped running{&pool};
  Task first(UntilStopped::run, &running);
  int runs = 0;
  Task second([](void* count) { ++*static_cast<int*>(count); }, &runs);
  pool.add_task(&first);
  pool.add_task(&second);
  while (!running.started) std::this_thread::yield();
  EXPECT_EQ(pool.destroy_threadpool(), 0);
  EXPECT_TRUE(running.finished);
  EXPECT_EQ(runs, 0);
  EXPECT_EQ(pool.task_queue, std::deque<Task*>{&second});
}

TEST(ThreadPool, RunsInTheOrderOfQueueingAlsoWhatCameBeforeItsThreads) {
  struct Entry {
    std::vector<size_t>* order;
    size_t number;
  };
  std::vector<size_t> order;
  std::vector<Entry> entries;
  std::vector<Task> tasks;
  for (size_t i = 0; i < 100; ++i) entries.push_back({&order, i});
  const auto append = [](void* argument) {
    const Entry& entry = *static_cast<Entry*>(argument);
    entry.order->push_back(entry.number);
  };
  for (Entry& entry : entries) tasks.emplace_back(append, &entry);

  ThreadPool pool(1);
  for (Task& task : tasks) pool.add_task(&task);
  pool.initialize_threadpool();
  expect_each_runs_once(&pool, 1);  // queued behind all of them
  ASSERT_EQ(order.size(), entries.size());
  EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST(FanOut, RunsEachInputExactlyOnceAndThenReturns) {
  ThreadPool pool;
  ASSERT_EQ(pool.initialize_threadpool(), 0);
  // Two callers share the pool.
  const auto fan_out = [&pool] {
    for (int round = 0; round < 5000; ++round) expect_each_runs_once(&pool, round % 65);
  };
  std::thread other(fan_out);
  fan_out();
  other.join();
}

TEST(FanOut, LogsFailuresOfItsLockAndGoesOn) {
  ThreadPool pool(2);
  ASSERT_EQ(pool.initialize_threadpool(), 0);
  constexpr struct {
    SystemCall call;
    const char* text;
  } kFailures[] = {
      {SystemCall::kMutexInit, "##### Failed to initialize worker_lock!"},
      {SystemCall::kCondInit, "##### Failed to initialize worker_cond!"},
      {SystemCall::kMutexDestroy, "##### Failed to destroy worker_lock!"},
      {SystemCall::kCondDestroy, "##### Failed to destroy worker_cond!"},
  };
  for (const auto& failure : kFailures) {
    take_log();
    const FailCall fail(failure.call, 1, 16);
    expect_each_runs_once(&pool, 3);
    EXPECT_EQ(take_log(), pool_lines({failure.text}));
  }
}

}  // namespace
}  // namespace zavri::testing
