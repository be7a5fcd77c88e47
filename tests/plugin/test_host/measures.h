// What this process holds, for tests that nothing is left behind.
#pragma once

#include <cstddef>

namespace corvel::test_host {

// Open file descriptors or handles.
std::size_t OpenHandles();
// Bytes that are allocated and not freed, the library's included.
std::size_t AllocatedBytes();

// What the loader, and a sanitizer if there is one, may keep of a library that is gone, in bytes.
std::size_t MemoryOfUnloadedLibrary();

}  // namespace corvel::test_host
