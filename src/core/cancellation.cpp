#include "core/cancellation.h"

#include "platform/platform.h"

namespace corvel {

Cancellation& Cancellation::OfProcess() {
  static Cancellation cancellation;
  return cancellation;
}

bool Cancellation::Ask() {
  const platform::Answer answer = platform::Get().ShowMessageBox(
      texts.caption, texts.prompt, platform::Buttons::kYesNo, platform::Icon::kQuestion);
  // A No takes no earlier Yes back.
  if (answer != platform::Answer::kYes) return false;
  confirmed_ = true;
  return true;
}

}  // namespace corvel
