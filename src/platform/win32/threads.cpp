#include "platform/threads.h"

#include <windows.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <utility>

namespace platform {

// A process that is spread over several groups of processors has no mask.
unsigned UsableCores() {
  DWORD_PTR mine = 0;
  DWORD_PTR all = 0;
  const bool told = ::GetProcessAffinityMask(::GetCurrentProcess(), &mine, &all) != 0;
  if (told && mine != 0) return static_cast<unsigned>(std::popcount(std::uint64_t{mine}));
  return std::max(1U, std::thread::hardware_concurrency());
}

std::thread StartThread(std::function<void()> work) { return std::thread(std::move(work)); }

}  // namespace platform
