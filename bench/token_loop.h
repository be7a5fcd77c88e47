// Yardstick: what it costs to look at each byte of a STEP file once and tell the tokens apart.
#pragma once

#include <cstddef>
#include <string_view>

namespace corvel::bench {

// Words, numbers, references, enumerations, texts and signs of `text`. Nothing is kept or parsed;
// comments are not known.
std::size_t CountTokens(std::string_view text);

}  // namespace corvel::bench
