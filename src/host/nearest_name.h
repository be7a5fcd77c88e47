// "Did you mean ...?" for words on the command line.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvel::host {

// Least number of insertions, deletions, replacements and swaps of two neighbours that turn one
// word into the other, no letter being touched twice. Bytes count, and so does case. Costs the
// product of the lengths.
std::size_t EditDistance(std::string_view from, std::string_view to);

// The name that `word` may have been meant for: the one with the least distance, the earliest of
// several, case aside. Nothing when none is near, which takes one mistake in three letters at most;
// dashes in front are no letters. A name that begins with three letters or more of `word` is near.
std::optional<std::string> NearName(std::string_view word, const std::vector<std::string>& names);

}  // namespace corvel::host
