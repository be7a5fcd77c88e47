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
// Standard output is a terminal that takes colours by escape sequences.
bool CanColourOutput();
// Columns of that terminal; 80 when it does not tell.
int TerminalColumns();

// From now on an interrupt (Ctrl-C) and a request to end (SIGTERM, SIGHUP; Ctrl-Break, the closing
// of the console, the end of the session) only raise a flag. An interrupt that comes while the flag
// is up ends the process at once with exit status 130, and removes the unfinished file first. A
// request that was ignored when the program started stays ignored. Writing to a pipe that nobody
// reads any more, or beyond the size that the system allows a file, fails from now on instead of
// ending the process.
void CatchInterrupts();
// The flag is up. Costs a load.
bool IsInterrupted();
// By what the process was asked to end, for people: "SIGTERM". Empty as long as it was not, or was
// interrupted only, which leaves room for a question.
std::u16string_view RequestToEnd();
// Takes the flag down: the user went back on an interrupt. A request to end cannot be undone.
void ForgetInterrupt();

// The file to remove when a second interrupt ends the process; empty: none, and so is a path of
// more than 4,095 bytes. Windows keeps a file that is still open.
void SetUnfinishedFile(const std::u16string& path);

}  // namespace platform
