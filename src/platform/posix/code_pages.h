// Single-byte code pages by their Windows numbers.
#pragma once

#include <cstdint>
#include <optional>

namespace platform {

// See Platform::DecodeByte. The table of a page is made at its first use.
std::optional<char16_t> DecodeCodePageByte(unsigned codePage, std::uint8_t byte);

}  // namespace platform
