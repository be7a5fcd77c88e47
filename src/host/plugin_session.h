// The plug-in within this program, from its load to its unload.
#pragma once

#include <optional>

#include "core/text.h"
#include "plugin/plugin.h"

namespace corvel::host {

// Drives the entry points as a viewer does: attach, load; and at the end unload, detach. The viewer
// has to live longer.
class PluginSession {
 public:
  // `userFolder` takes the place of the folder that the plug-in finds itself.
  explicit PluginSession(const std::optional<WideString>& userFolder);
  ~PluginSession();
  PluginSession(const PluginSession&) = delete;
  PluginSession& operator=(const PluginSession&) = delete;

  // Good as long as the session.
  plugin::Plugin& ThePlugin() const { return *plugin::Plugin::Instance(); }
};

}  // namespace corvel::host
