// The main program and the library that this code is part of, and the folders for their data.
#pragma once

#include <string>

namespace platform {

// Any exported function; to be cast to its own type.
using ExportedFunction = void (*)();

// The function that the main program, not this library, exports under `name`; null without one.
// Good as long as the program runs.
ExportedFunction FindInMainProgram(const char* name);

// Full path of the library that holds this code, or of the program when it is linked into that.
std::u16string LibraryPath();

// The folder for data of the user on this machine alone, and the one for all its users. Without a
// separator at the end; empty when the system does not tell.
std::u16string UserDataFolder();
std::u16string CommonDataFolder();

}  // namespace platform
