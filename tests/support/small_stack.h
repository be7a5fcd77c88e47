// Runs a piece of a test on a thread whose stack holds 256 KiB.
#pragma once

#include <functional>
#include <stdexcept>

#ifdef _WIN32
#include <windows.h>
#else
#include <pthread.h>
#endif

namespace corvel::test {

// Recursion over a deep model overflows such a stack. `work` must not throw.
inline void RunOnSmallStack(std::function<void()> work) {
  constexpr std::size_t kStackSize = std::size_t{256} << 10;
#ifdef _WIN32
  const auto run = [](void* argument) -> DWORD {
    (*static_cast<std::function<void()>*>(argument))();
    return 0;
  };
  HANDLE thread =
      CreateThread(nullptr, kStackSize, run, &work, STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
  if (thread == nullptr) throw std::runtime_error("CreateThread");
  WaitForSingleObject(thread, INFINITE);
  CloseHandle(thread);
#else
  const auto run = [](void* argument) -> void* {
    (*static_cast<std::function<void()>*>(argument))();
    return nullptr;
  };
  pthread_attr_t attributes;
  pthread_t thread;
  if (pthread_attr_init(&attributes) != 0 ||
      pthread_attr_setstacksize(&attributes, kStackSize) != 0 ||
      pthread_create(&thread, &attributes, run, &work) != 0) {
    throw std::runtime_error("pthread_create");
  }
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
#endif
}

}  // namespace corvel::test
