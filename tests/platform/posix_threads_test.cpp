#ifdef __linux__

#include <gtest/gtest.h>
#include <sched.h>

#include <csignal>
#include <thread>

#include "platform/threads.h"

namespace platform {
namespace {

sigset_t SignalsHeldBackHere() {
  sigset_t held;
  ::sigemptyset(&held);
  ::pthread_sigmask(SIG_SETMASK, nullptr, &held);
  return held;
}

TEST(PosixThreads, NewThreadGetsFaultsOfItsOwnAndNoSignalsOfTheProcess) {
  sigset_t held;
  StartThread([&held] { held = SignalsHeldBackHere(); }).join();
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGCHLD}) {
    EXPECT_EQ(1, ::sigismember(&held, signal)) << signal;
  }
  for (const int fault : {SIGSEGV, SIGFPE, SIGABRT}) {
    EXPECT_EQ(0, ::sigismember(&held, fault)) << fault;
  }
  const sigset_t mine = SignalsHeldBackHere();
  EXPECT_EQ(0, ::sigismember(&mine, SIGINT));
}

TEST(PosixThreads, CoresThatAreTakenFromTheProcessDoNotCount) {
  cpu_set_t before;
  ASSERT_EQ(0, ::sched_getaffinity(0, sizeof before, &before));
  cpu_set_t one;
  CPU_ZERO(&one);
  for (std::size_t core = 0; core < CPU_SETSIZE && CPU_COUNT(&one) == 0; ++core) {
    if (CPU_ISSET(core, &before)) CPU_SET(core, &one);
  }
  EXPECT_EQ(static_cast<unsigned>(CPU_COUNT(&before)), UsableCores());
  ASSERT_EQ(0, ::sched_setaffinity(0, sizeof one, &one));
  EXPECT_EQ(1U, UsableCores());
  ::sched_setaffinity(0, sizeof before, &before);
}

}  // namespace
}  // namespace platform

#endif
