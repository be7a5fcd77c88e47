// The program behind `main`.
#pragma once

#include <vector>

#include "core/text.h"
#include "host/exit_status.h"

namespace corvel::host {

// Runs the command that the arguments name (those behind the program's own name). Results go to
// standard output, everything else to standard error. Once per process: the merge and the resave
// load the plug-in and catch interrupts. Throws what nobody foresees.
ExitStatus RunCommand(const std::vector<WideString>& arguments);

// The last line for programs that follow the progress (--progress json), however the command ended:
// wrong usage and what RunCommand throws included. Nothing where they are not asked for.
void TellEndToPrograms(const std::vector<WideString>& arguments, ExitStatus status);

}  // namespace corvel::host
