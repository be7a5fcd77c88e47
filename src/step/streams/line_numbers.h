// From places in a file to the lines that a text editor shows.
#pragma once

#include <cstdint>
#include <vector>

#include "core/text.h"

namespace FileStream {

// For each offset into the data behind `path`, which may be an archive, the number of its line: 1
// and the line feeds before it, wherever they stand. 0 for all when the data cannot be read again.
// Reads up to the largest offset; reports nothing.
std::vector<std::uint64_t> LinesOf(const corvel::WideString& path,
                                   const std::vector<std::int64_t>& offsets);

}  // namespace FileStream
