#include "platform/terminal.h"

namespace platform {

namespace {

std::optional<Answer> answerPolicy;
Dialogs currentDialogs = Dialogs::kWindows;

std::optional<Answer> ParseAnswer(std::string line) {
  for (char& c : line) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + ('a' - 'A'));
  }
  if (line == "y" || line == "yes") return Answer::kYes;
  if (line == "n" || line == "no") return Answer::kNo;
  return {};
}

// Until there is an answer; nothing when the input ends before.
std::optional<Answer> AskAPerson() {
  while (true) {
    WriteStandardError(u"[y/n] ");
    const std::optional<std::string> line = ReadStandardInputLine();
    if (!line) {
      WriteStandardError(u"\n");
      return {};
    }
    if (const std::optional<Answer> answer = ParseAnswer(*line)) return answer;
  }
}

}  // namespace

void SetAnswerPolicy(std::optional<Answer> policy) { answerPolicy = policy; }

void SetDialogs(Dialogs dialogs) { currentDialogs = dialogs; }

Dialogs CurrentDialogs() { return currentDialogs; }

TerminalAnswer ShowBoxOnTerminal(std::u16string_view title, std::u16string_view text,
                                 Buttons buttons) {
  std::u16string line(title);
  line.append(u": ").append(text);
  if (line.back() != u'\n') line.push_back(u'\n');
  WriteStandardError(line);
  if (buttons != Buttons::kYesNo) return {Answer::kOk, false};
  if (answerPolicy) return {*answerPolicy, false};
  if (CanAskOnTerminal()) {
    if (const std::optional<Answer> answer = AskAPerson()) return {*answer, true};
  }
  return {Answer::kYes, false};
}

}  // namespace platform
