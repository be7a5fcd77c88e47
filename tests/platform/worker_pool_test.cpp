#include "platform/worker_pool.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <set>
#include <stdexcept>
#include <thread>
#include <vector>

#include "platform/threads.h"

namespace platform {
namespace {

class FunctionJob final : public Job {
 public:
  explicit FunctionJob(std::function<void()> work) : work_(std::move(work)) {}

 private:
  void Run() override { work_(); }

  std::function<void()> work_;
};

// Lets everybody pass once it is open.
class Gate {
 public:
  void Open() {
    {
      const std::scoped_lock lock(mutex_);
      open_ = true;
    }
    opened_.notify_all();
  }
  void Pass() {
    std::unique_lock lock(mutex_);
    opened_.wait(lock, [this] { return open_; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable opened_;
  bool open_ = false;
};

class WorkerPoolOf : public testing::TestWithParam<unsigned> {};

INSTANTIATE_TEST_SUITE_P(Threads, WorkerPoolOf, testing::Values(0U, 1U, 2U, 3U, 8U));

TEST_P(WorkerPoolOf, ResultsAreTakenInTheOrderOfTheCaller) {
  constexpr int kJobs = 500;
  std::vector<int> results(kJobs, -1);
  std::vector<std::unique_ptr<FunctionJob>> jobs;
  jobs.reserve(kJobs);
  for (int i = 0; i < kJobs; ++i) {
    jobs.push_back(std::make_unique<FunctionJob>([&results, i] { results[i] = i * i; }));
  }
  WorkerPool pool(GetParam());
  for (const auto& job : jobs) pool.Submit(*job);
  for (int i = 0; i < kJobs; ++i) {
    pool.Finish(*jobs[i]);
    ASSERT_EQ(i * i, results[i]);
  }
}

TEST_P(WorkerPoolOf, JobIsDoneAgainEachTimeItIsSubmitted) {
  int sum = 0;
  FunctionJob job([&sum] { ++sum; });
  WorkerPool pool(GetParam());
  for (int i = 1; i <= 100; ++i) {
    pool.Submit(job);
    pool.Finish(job);
    ASSERT_EQ(i, sum);
  }
}

TEST_P(WorkerPoolOf, FailureOfAJobComesOutWhereItIsFinishedAndNowhereElse) {
  bool fails = true;
  FunctionJob good([] {});
  FunctionJob bad([&fails] {
    if (fails) throw std::runtime_error("no room");
  });
  FunctionJob last([] {});
  WorkerPool pool(GetParam());
  for (FunctionJob* const job : {&good, &bad, &last}) pool.Submit(*job);
  EXPECT_NO_THROW(pool.Finish(good));
  try {
    pool.Finish(bad);
    ADD_FAILURE() << "nothing came out";
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ("no room", error.what());
  }
  EXPECT_NO_THROW(pool.Finish(last));
  fails = false;
  pool.Submit(bad);
  EXPECT_NO_THROW(pool.Finish(bad));
}

TEST_P(WorkerPoolOf, WhatWasSubmittedAndNotFinishedGoesWithThePool) {
  constexpr int kJobs = 50;
  std::vector<std::unique_ptr<FunctionJob>> jobs;
  jobs.reserve(kJobs);
  std::atomic<int> begun = 0;
  std::atomic<int> ended = 0;
  for (int i = 0; i < kJobs; ++i) {
    jobs.push_back(std::make_unique<FunctionJob>([&] {
      ++begun;
      std::this_thread::yield();
      ++ended;
      throw std::runtime_error("nobody asks");
    }));
  }
  {
    WorkerPool pool(GetParam());
    for (const auto& job : jobs) pool.Submit(*job);
  }
  EXPECT_EQ(begun, ended);
}

TEST(WorkerPool, OneThreadIsTheCallerHimself) {
  std::thread::id worker;
  FunctionJob job([&worker] { worker = std::this_thread::get_id(); });
  WorkerPool pool(1);
  EXPECT_EQ(1U, pool.Threads());
  pool.Submit(job);
  EXPECT_EQ(std::thread::id(), worker);
  pool.Finish(job);
  EXPECT_EQ(std::this_thread::get_id(), worker);
}

TEST(WorkerPool, AllThreadsWorkAtTheSameTimeTheCallerAmongThem) {
  constexpr unsigned kThreads = 4;
  std::mutex mutex;
  std::set<std::thread::id> seen;
  Gate allAreHere;
  std::vector<std::unique_ptr<FunctionJob>> jobs;
  jobs.reserve(kThreads);
  for (unsigned i = 0; i < kThreads; ++i) {
    jobs.push_back(std::make_unique<FunctionJob>([&] {
      {
        const std::scoped_lock lock(mutex);
        seen.insert(std::this_thread::get_id());
        if (seen.size() == kThreads) allAreHere.Open();
      }
      allAreHere.Pass();  // for ever, if a thread had two of them
    }));
  }
  WorkerPool pool(kThreads);
  ASSERT_EQ(kThreads, pool.Threads());
  for (const auto& job : jobs) pool.Submit(*job);
  for (const auto& job : jobs) pool.Finish(*job);
  EXPECT_EQ(kThreads, seen.size());
  EXPECT_EQ(1U, seen.count(std::this_thread::get_id()));
}

TEST(WorkerPool, DroppedJobsAreNeverBegunAndThoseUnderWayAreWaitedFor) {
  Gate begun;
  Gate goOn;
  std::atomic<bool> firstIsDone = false;
  bool secondWasBegun = false;
  FunctionJob first([&] {
    begun.Open();
    goOn.Pass();
    firstIsDone = true;
  });
  FunctionJob second([&] { secondWasBegun = true; });
  WorkerPool pool(2);
  pool.Submit(first);
  begun.Pass();
  pool.Submit(second);
  ASSERT_EQ(1U, pool.Queued());
  std::thread opener([&] {
    while (pool.Queued() != 0) std::this_thread::yield();
    goOn.Open();
  });
  pool.Drop();
  EXPECT_TRUE(firstIsDone);
  EXPECT_FALSE(secondWasBegun);
  opener.join();
  pool.Submit(second);
  pool.Finish(second);
  EXPECT_TRUE(secondWasBegun);
}

TEST(WorkerPool, CallerDoesWhatIsQueuedWhileItWaits) {
  Gate begun;
  Gate secondIsDone;
  std::thread::id whoDidTheSecond;
  FunctionJob first([&] {
    begun.Open();
    secondIsDone.Pass();
  });
  FunctionJob second([&] {
    whoDidTheSecond = std::this_thread::get_id();
    secondIsDone.Open();
  });
  WorkerPool pool(2);
  pool.Submit(first);
  begun.Pass();
  pool.Submit(second);
  pool.Finish(first);
  pool.Finish(second);
  EXPECT_EQ(std::this_thread::get_id(), whoDidTheSecond);
}

TEST(Threads, ProcessMayUseOneCoreOrMoreAndNoMoreThanThereAre) {
  EXPECT_LE(1U, UsableCores());
  if (std::thread::hardware_concurrency() != 0) {
    EXPECT_LE(UsableCores(), std::thread::hardware_concurrency());
  }
}

}  // namespace
}  // namespace platform
