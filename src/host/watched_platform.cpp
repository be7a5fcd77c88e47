#include "host/watched_platform.h"

#include <utility>

#include "core/shown_paths.h"
#include "host/display_text.h"

namespace corvel::host {

WatchedPlatform::WatchedPlatform(Listener listener)
    : listener_(std::move(listener)),
      before_(platform::Replace(this)),
      system_(before_ != nullptr ? *before_ : platform::System()) {}

WatchedPlatform::~WatchedPlatform() { platform::Replace(before_); }

platform::Answer WatchedPlatform::ShowMessageBox(std::u16string_view title,
                                                 std::u16string_view text,
                                                 platform::Buttons buttons, platform::Icon icon) {
  if (const std::optional<platform::Answer> known = listener_.before(buttons, icon)) return *known;
  const platform::Answer answer = system_.ShowMessageBox(
      Printable(title), Printable(WithShownPaths(text), true), buttons, icon);
  listener_.shown(buttons, answer, system_.LastAnswerWasAPersons());
  return answer;
}

}  // namespace corvel::host
