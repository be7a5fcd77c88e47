// The types of the viewer's interface as this plug-in was built for it, version 5.52. Only plain C
// crosses the border. Text is 16-bit units, UTF-16 on every system.
#pragma once

#include <cstdint>

#include "merge/host_scene.h"

namespace corvel::plugin {

inline constexpr std::int32_t kApiMajorVersion = 5;
inline constexpr std::int32_t kApiMinorVersion = 52;

// First argument of every call; what it stands for is the viewer's affair.
using HostHandle = std::uint64_t;

using HostCallback = void (*)();
using HostQuestion = bool (*)();
using HostTabCallback = void (*)(std::uint64_t);
using HostMessageCallback = bool (*)(std::uint64_t, std::uint64_t);

// Flags of message_box, which are those of the system's own box.
inline constexpr std::uint32_t kErrorIcon = 16;
inline constexpr std::uint32_t kWarningIcon = 48;
inline constexpr std::uint32_t kInformationIcon = 64;

// In the place of a group: the button is placed later.
inline constexpr std::int32_t kNoGroup = -1;

// Six texts, filled by get_plugin_info. They belong to the plug-in and live as long as it does.
struct PluginInformation {
  const char16_t* name;
  const char16_t* producer;
  const char16_t* webAddress;
  const char16_t* eMail;
  const char16_t* description;
  const char16_t* dataFolder;
};

}  // namespace corvel::plugin
