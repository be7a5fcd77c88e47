// The manual of the command line, as `--help` shows it.
#pragma once

#include "core/text.h"
#include "host/command_line.h"

namespace corvel::host {

// Lines of 80 columns at most, for people, with a line feed behind the last. Good as long as the
// program.
WideView GeneralHelp();
WideView HelpOf(Command command);
// "corvel 1.2.3" and a line feed.
WideString VersionText();

}  // namespace corvel::host
