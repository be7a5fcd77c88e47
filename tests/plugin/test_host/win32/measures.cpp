#include "measures.h"

#include <windows.h>

#include <vector>

namespace corvel::test_host {

namespace {

std::size_t AllocatedBytesOf(HANDLE heap) {
  std::size_t bytes = 0;
  PROCESS_HEAP_ENTRY entry{};
  ::HeapLock(heap);
  while (::HeapWalk(heap, &entry) != 0) {
    if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0) bytes += entry.cbData;
  }
  ::HeapUnlock(heap);
  return bytes;
}

}  // namespace

std::size_t OpenHandles() {
  DWORD count = 0;
  ::GetProcessHandleCount(::GetCurrentProcess(), &count);
  return count;
}

std::size_t AllocatedBytes() {
  std::vector<HANDLE> heaps(::GetProcessHeaps(0, nullptr));
  heaps.resize(::GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data()));
  std::size_t bytes = 0;
  for (HANDLE const heap : heaps) bytes += AllocatedBytesOf(heap);
  return bytes;
}

std::size_t MemoryOfUnloadedLibrary() { return 1024; }

}  // namespace corvel::test_host
