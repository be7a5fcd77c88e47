// Memory figures of the machine.
#pragma once

#include <optional>
#include <string_view>

#include "platform/platform.h"

namespace platform {

// The physical and page-file figures out of the text of /proc/meminfo. The page file is what
// Windows calls so: physical memory and swap space together. Nothing when a line is missing.
std::optional<MemoryFigures> ParseMemoryInfo(std::string_view text);

std::optional<MemoryFigures> QuerySystemMemory();

}  // namespace platform
