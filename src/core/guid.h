// GUIDs as IFC files write them.
#pragma once

#include <string>

namespace corvel {

// A new GUID of 22 characters, the first in "0123", from the system's GUID source. Empty, with a
// message box, when that source gives nothing.
std::string CreateGUID();

}  // namespace corvel
