#include "platform/worker_pool.h"

#include <exception>
#include <utility>

#include "platform/threads.h"

namespace platform {

WorkerPool::WorkerPool(unsigned threads) : most_(threads > 1 ? threads - 1 : 0) {
  threads_.reserve(most_);
}

void WorkerPool::StartOne() noexcept {
  try {
    threads_.push_back(StartThread([this] { Work(); }));
  } catch (const std::exception&) {
    // There is none to spare; those that are there are enough.
    most_ = static_cast<unsigned>(threads_.size());
  }
}

WorkerPool::~WorkerPool() {
  Drop();
  {
    const std::scoped_lock lock(mutex_);
    ends_ = true;
  }
  queued_.notify_all();
  for (std::thread& thread : threads_) thread.join();
}

void WorkerPool::Submit(Job& job) {
  bool isOneMoreOfUse = false;
  {
    const std::scoped_lock lock(mutex_);
    queue_.push_back(&job);
    job.state_ = Job::State::kQueued;
    isOneMoreOfUse = queue_.size() > idle_;
  }
  queued_.notify_one();
  if (isOneMoreOfUse && threads_.size() < most_) StartOne();
}

Job& WorkerPool::TakeFirst() {
  Job& job = *queue_.front();
  queue_.pop_front();
  return job;
}

void WorkerPool::Do(Job& job, std::unique_lock<std::mutex>& lock) {
  job.state_ = Job::State::kRunning;
  ++running_;
  lock.unlock();
  std::exception_ptr failure;
  try {
    job.Run();
  } catch (...) {
    failure = std::current_exception();
  }
  lock.lock();
  --running_;
  job.failure_ = std::move(failure);
  job.state_ = Job::State::kDone;
}

void WorkerPool::Work() {
  std::unique_lock lock(mutex_);
  for (;;) {
    ++idle_;
    queued_.wait(lock, [this] { return ends_ || !queue_.empty(); });
    --idle_;
    if (queue_.empty()) return;
    Do(TakeFirst(), lock);
    done_.notify_one();
  }
}

void WorkerPool::Finish(Job& job) {
  std::unique_lock lock(mutex_);
  while (job.state_ != Job::State::kDone) {
    if (queue_.empty()) {
      done_.wait(lock);
    } else {
      Do(TakeFirst(), lock);
    }
  }
  job.state_ = Job::State::kIdle;
  if (job.failure_ == nullptr) return;
  std::rethrow_exception(std::exchange(job.failure_, nullptr));
}

void WorkerPool::Drop() noexcept {
  std::unique_lock lock(mutex_);
  for (Job* const job : queue_) job->state_ = Job::State::kIdle;
  queue_.clear();
  done_.wait(lock, [this] { return running_ == 0; });
}

std::size_t WorkerPool::Queued() const {
  const std::scoped_lock lock(mutex_);
  return queue_.size();
}

}  // namespace platform
