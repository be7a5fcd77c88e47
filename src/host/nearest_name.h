// "Did you mean ...?" for words on the command line.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace corvel::host {

// Least number of insertions, deletions, replacements and swaps of two neighbours that turn one
// word into the other, no letter being touched twice. Bytes count, and so does case.
std::size_t EditDistance(std::string_view from, std::string_view to);

// The name with the least distance to `word`, the earliest of several. `names` must not be empty.
const std::string& NearestName(std::string_view word, const std::vector<std::string>& names);

}  // namespace corvel::host
