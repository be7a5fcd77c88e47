// What lies in an archive.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "core/text.h"

namespace FileStream {

struct ArchiveEntry {
  corvel::WideString name;
  std::uint64_t bytes = 0;  // as the directory of the archive says
};

// The entries of the zip archive at `path` but for folders, in their order. Nothing when it cannot
// be read.
std::optional<std::vector<ArchiveEntry>> EntriesOf(const corvel::WideString& path);

}  // namespace FileStream
