// Small services that have to do with the machine and not with the model. New GUIDs are one more,
// which the container needs as well: they stand in core/guid.h.
#pragma once

#include <cstdint>
#include <cstdio>

#include "core/reporting.h"
#include "core/text.h"

namespace corvel {

// Free space of the system disk below which no parsing goes on, in GiB.
inline constexpr std::int64_t kLeastFreeDiskGB = 5;

// Writes the memory figures of the machine, in MiB, to MemoryReportOutput and to the log. Gives the
// low 32 bits of the free address space in bytes, 0 when the query fails (which is told on standard
// error and in the log).
std::uint32_t ReportMemory();

// Where ReportMemory prints: standard output at first, null for nowhere. Borrowed, and never
// closed.
std::FILE*& MemoryReportOutput();

// Free space of the system disk in whole GiB. Throws std::filesystem::filesystem_error.
std::int64_t FreeDiskGB();

// True when parsing may go on: kLeastFreeDiskGB or more are free. Otherwise it shows a message box
// and sets CancelMode to 2. Throws as FreeDiskGB.
bool CheckDiskSpace();

// Remembers `path` in the file LastPath.txt of `folder`, as raw 16-bit units. False when the file
// cannot be written, which is reported unless `showError` is null.
bool SaveLastPath(const WideString& folder, const WideString& path, ErrorReporter showError);

// Starts the running program anew with the path that SaveLastPath remembered in `folder`, of which
// 256 units are read; does not wait for it. A path that is not there, or names no readable file, is
// reported with the key
// "fail_to_open_last_created_file_message".
void OpenLastFile(const WideString& folder, ErrorReporter showError);

// True when a file can be created at `path`: it makes the missing folders and leaves an empty file,
// also where a file with content stood.
bool EnsureFile(const WideString& path);

// The text without its leading "." and "," characters.
WideString TrimDots(const WideString& text);

}  // namespace corvel
