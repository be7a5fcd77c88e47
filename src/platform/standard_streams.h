// Standard input and output as bytes, for programs in pipes.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace platform {

// Waits for bytes and gives how many came, at most `size`; 0 at the end. Nothing when standard
// input cannot be read, and when an interrupt or a request to end is up (see console.h); a wait is
// ended by that too, on Windows once something comes or the other side closes.
std::optional<std::size_t> ReadStandardInput(char* buffer, std::size_t size);

// False when not all of it could be written. Nothing is translated.
bool WriteStandardOutputBytes(std::string_view bytes);

}  // namespace platform
