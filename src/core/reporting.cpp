#include "core/reporting.h"

#include "platform/platform.h"

namespace corvel {

CancelTexts& SharedCancelTexts() {
  static CancelTexts texts;
  return texts;
}

bool AskCancelQuestion(const CancelTexts& texts) {
  const platform::Answer answer = platform::Get().ShowMessageBox(
      texts.caption, texts.prompt, platform::Buttons::kYesNo, platform::Icon::kQuestion);
  if (answer != platform::Answer::kYes) return false;
  CancelWasConfirmed() = true;
  return true;
}

bool& CancelWasConfirmed() {
  static bool confirmed = false;
  return confirmed;
}

int& CancelMode() {
  static int mode = 0;
  return mode;
}

}  // namespace corvel
