// What a command line program needs of the terminal that it was started from. The graphical shell
// uses none of it. Questions go through Platform::ShowMessageBox.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace platform {

// The arguments of the program without its own name, every byte of them kept.
std::vector<std::u16string> ProgramArguments(int count, char** arguments);

// Gives each standard stream that was closed when the program started a place to go, so that no
// model file takes its number and gets what is meant for people. Call first.
void KeepStandardStreams();

// False when the text could not be written whole.
bool WriteStandardOutput(std::u16string_view text);

// Standard error is a terminal on which the cursor can be moved by escape sequences.
bool CanDrawOnTerminal();
// Columns of that terminal; 80 when it does not tell.
int TerminalColumns();

// From now on the first interrupt (Ctrl-C) only raises a flag. A second one while the flag is up
// ends the process at once with exit status 130, as a request of the system to end does with its
// own status; both remove the unfinished file first. An interrupt that was ignored when the program
// started stays ignored. Writing to a pipe that nobody reads any more, or beyond the size that the
// system allows a file, fails from now on instead of ending the process.
void CatchInterrupts();
bool IsInterrupted();
// Takes the flag down: the user went back on it.
void ForgetInterrupt();

// The file to remove when the process ends between here and the next call; empty: none. Windows
// keeps a file that is still open.
void SetUnfinishedFile(const std::u16string& path);

}  // namespace platform
