// Programs started beside this one.
#pragma once

#include <string>

namespace platform {

// See Platform::ShellOpen. The new program lives on by itself, with no input and no output.
bool OpenByShell(const std::string& target, const std::string& parameter);

}  // namespace platform
