// Paths beyond the 260 units that Windows takes by default.
#pragma once

#include <string>

namespace platform {

// `path` as the file functions of the system take it. Where its full form is longer than they
// allow, that form behind the prefix that lifts the limit; otherwise `path` itself. Paths that have
// such a prefix already pass as they are.
std::wstring PathForSystem(const std::u16string& path);

}  // namespace platform
