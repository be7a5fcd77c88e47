#include "plugin/delivery.h"

#include "core/text.h"
#include "platform/platform.h"

namespace corvel::plugin {

// Without memory for the box there is nobody left to be told.
void TellFailure(const char* text) noexcept try {
  platform::Get().ShowMessageBox(u"Error!", Widen(text), platform::Buttons::kOk,
                                 platform::Icon::kWarning);
} catch (...) {
}

}  // namespace corvel::plugin
