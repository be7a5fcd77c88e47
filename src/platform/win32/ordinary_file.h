// Opening what is a file of bytes on a disk, and nothing else that stands in its place.
#pragma once

#include <windows.h>

#include <string>

namespace platform {

// CreateFile, but for links, devices and pipes, which are refused. INVALID_HANDLE_VALUE when it
// fails; GetLastError tells why.
HANDLE OpenOrdinaryFile(const std::u16string& path, DWORD access, DWORD share, DWORD creation);

}  // namespace platform
