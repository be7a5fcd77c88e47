// Message boxes as lines on the terminal, and the terminal itself. For the implementations of
// Platform; programs without windows write their own lines by WriteStandardError.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/platform.h"

namespace platform {

struct TerminalAnswer {
  Answer answer = Answer::kOk;
  bool byAPerson = false;
};

// Prints the box and finds its answer: see Platform::ShowMessageBox and SetAnswerPolicy.
TerminalAnswer ShowBoxOnTerminal(std::u16string_view title, std::u16string_view text,
                                 Buttons buttons);

// Where boxes go; see SetDialogs.
Dialogs CurrentDialogs();

// --- What each system provides ------------------------------------------------------------------

// Standard input and standard error are both a terminal.
bool CanAskOnTerminal();
// Line ends are the caller's. A failure is nobody's to hear of.
void WriteStandardError(std::u16string_view text);
// A line of standard input without its end; nothing at the end of the input, and when the process
// is asked to end meanwhile (see RequestToEnd).
std::optional<std::string> ReadStandardInputLine();

}  // namespace platform
