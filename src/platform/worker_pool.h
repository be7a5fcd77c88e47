// Threads that share the work of one, who stays in command: results are taken in the order that
// suits him, and whatever others may see or hear of the work happens on his thread.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace platform {

class WorkerPool;

// A piece of work that any thread can do. May be submitted again once it is finished, so that
// what it needs besides (buffers, say) is made once.
class Job {
 public:
  virtual ~Job() = default;
  Job(const Job&) = delete;
  Job& operator=(const Job&) = delete;

 protected:
  Job() = default;
  // Runs on some thread, while others run other jobs: touches what is its own, and reads what
  // nobody changes meanwhile. What it throws comes out of WorkerPool::Finish.
  virtual void Run() = 0;

 private:
  friend class WorkerPool;
  enum class State : std::uint8_t { kIdle, kQueued, kRunning, kDone };

  State state_ = State::kIdle;
  std::exception_ptr failure_;
};

// A fixed number of threads that do jobs in the order in which they were submitted. One thread, the
// caller, makes it, uses it and destroys it; it takes part in the work while it waits.
class WorkerPool {
 public:
  // `threads` in all, the caller among them: up to one less is started, each when there is a job
  // for it. Where the system refuses to start one there are fewer, and with none at all the caller
  // does everything.
  explicit WorkerPool(unsigned threads);
  // As Drop; then all threads have ended.
  ~WorkerPool();
  WorkerPool(const WorkerPool&) = delete;
  WorkerPool& operator=(const WorkerPool&) = delete;

  // Hands over a job that is not under way. It is borrowed until Finish or Drop has returned. Of
  // what the caller has written before, the job sees everything.
  void Submit(Job& job);
  // Returns when a job that was submitted is done, and throws what it threw. Until then the caller
  // does this job, or others that nobody has begun. The caller sees everything that the job wrote.
  void Finish(Job& job);
  // Jobs that nobody has begun are never begun, and those that are under way are waited for. What
  // they have thrown is forgotten.
  void Drop() noexcept;

  // Jobs that were submitted and that nobody has begun. Any thread may ask.
  std::size_t Queued() const;
  // Threads that may work at the same time, the caller among them.
  unsigned Threads() const { return most_ + 1; }

 private:
  void StartOne() noexcept;
  void Work();
  Job& TakeFirst();
  void Do(Job& job, std::unique_lock<std::mutex>& lock);

  mutable std::mutex mutex_;
  std::condition_variable queued_;  // or the end: what the threads wait for
  std::condition_variable done_;    // what the caller waits for
  std::deque<Job*> queue_;
  unsigned running_ = 0;  // jobs under way
  unsigned idle_ = 0;     // threads that wait
  bool ends_ = false;
  // Of the caller alone.
  unsigned most_;  // threads beside it
  std::vector<std::thread> threads_;
};

}  // namespace platform
