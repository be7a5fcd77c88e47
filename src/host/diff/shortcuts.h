// Whether a comparison takes its shortcuts.
#pragma once

#include <cstdint>

namespace corvel::host::diff {

// What is found is the same. Without shortcuts everything has its digest made and all that can be
// known is worked out, which takes several times as long: tests hold the one against the other.
enum class Shortcuts : std::uint8_t { kTaken, kNone };

}  // namespace corvel::host::diff
