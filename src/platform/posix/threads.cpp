#include "platform/threads.h"

#include <sched.h>

#include <algorithm>
#include <csignal>
#include <cstddef>
#include <utility>

namespace platform {

namespace {

#ifdef __linux__
// As many as the set of the process holds; 0 when the system has more than it can tell of here.
unsigned CoresOfProcess() {
  constexpr std::size_t kMostCores = 8192;
  cpu_set_t* const set = CPU_ALLOC(kMostCores);
  if (set == nullptr) return 0;
  const std::size_t size = CPU_ALLOC_SIZE(kMostCores);
  const bool told = ::sched_getaffinity(0, size, set) == 0;
  const int count = told ? CPU_COUNT_S(size, set) : 0;
  CPU_FREE(set);
  return static_cast<unsigned>(count);
}
#else
unsigned CoresOfProcess() { return 0; }
#endif

// For the thread on which it lives, and those that this one starts. What a thread brings upon
// itself by a fault reaches it all the same.
class SignalsHeldBack {
 public:
  SignalsHeldBack() {
    sigset_t all;
    ::sigfillset(&all);
    for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGTRAP}) {
      ::sigdelset(&all, fault);
    }
    ::pthread_sigmask(SIG_SETMASK, &all, &before_);
  }
  ~SignalsHeldBack() { ::pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  SignalsHeldBack(const SignalsHeldBack&) = delete;
  SignalsHeldBack& operator=(const SignalsHeldBack&) = delete;

 private:
  sigset_t before_{};
};

}  // namespace

unsigned UsableCores() {
  const unsigned cores = CoresOfProcess();
  return cores != 0 ? cores : std::max(1U, std::thread::hardware_concurrency());
}

std::thread StartThread(std::function<void()> work) {
  const SignalsHeldBack forTheNewOne;
  return std::thread(std::move(work));
}

}  // namespace platform
