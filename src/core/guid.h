// GUIDs as IFC files write them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace corvel {

// A new GUID of 22 characters, the first in "0123", from the system's GUID source. Empty, with a
// message box, when that source gives nothing.
std::string CreateGUID();

// The GUID that is made from an old one and a number: the same for the same two, another one, in
// all likelihood, for any others.
std::string DeriveGuid(std::string_view old, std::uint64_t number);

}  // namespace corvel
