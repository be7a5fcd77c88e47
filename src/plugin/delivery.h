// The way of an event from the viewer to the plug-in that lives. The viewer knows no exceptions:
// what an event throws is told in a box and goes no further.
#pragma once

#include <exception>

#include "plugin/plugin.h"

namespace corvel::plugin {

// Shows the text of an exception in a box of the system.
void TellFailure(const char* text) noexcept;

// The answer of `event`, which is called with the plug-in. `otherwise` when there is none, and when
// the event throws.
template <class Result, class Event>
Result Deliver(Result otherwise, Event event) {
  Plugin* const plugin = Plugin::Instance();
  if (plugin == nullptr) return otherwise;
  try {
    return event(*plugin);
  } catch (const std::exception& error) {
    TellFailure(error.what());
  } catch (...) {
    TellFailure("Unknown error.");
  }
  return otherwise;
}

template <class Event>
void Deliver(Event event) {
  Deliver(false, [&](Plugin& plugin) {
    event(plugin);
    return true;
  });
}

}  // namespace corvel::plugin
