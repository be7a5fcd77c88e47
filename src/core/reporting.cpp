#include "core/reporting.h"

#include "platform/platform.h"

namespace corvel {

CancelTexts& SharedCancelTexts() {
  static CancelTexts texts;
  return texts;
}

bool AskCancelQuestion(const CancelTexts& texts) {
  return platform::Get().ShowMessageBox(texts.caption, texts.prompt, platform::Buttons::kYesNo,
                                        platform::Icon::kQuestion) == platform::Answer::kYes;
}

int& CancelMode() {
  static int mode = 0;
  return mode;
}

}  // namespace corvel
