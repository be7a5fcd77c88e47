#include "host/plugin_session.h"

#include "platform/file.h"
#include "platform/module.h"
#include "plugin/attachment.h"
#include "plugin/entry_points.h"
#include "step/log/utilities.h"

namespace corvel::host {

namespace {

// There is one viewer, which needs no handle to be told from others.
constexpr plugin::HostHandle kHandle = 1;

}  // namespace

PluginSession::PluginSession(const std::optional<WideString>& userFolder) {
  MemoryReportOutput() = nullptr;  // the log has the figures; standard output is for results
  plugin::Attach(&platform::FindInMainProgram);
  if (userFolder) ThePlugin().folders.user = platform::JoinPath(*userFolder, u"");
  on_plugin_load(kHandle, 0, nullptr);
}

PluginSession::~PluginSession() {
  on_plugin_unload();
  plugin::Detach();
}

}  // namespace corvel::host
