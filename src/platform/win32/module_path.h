// Paths of loaded modules.
#pragma once

#include <string>

namespace platform {

// `module`: a module handle, null for the main program.
std::u16string PathOfModule(void* module);

}  // namespace platform
