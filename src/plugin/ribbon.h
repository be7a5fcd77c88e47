// The plug-in's group in the viewer's ribbon.
#pragma once

#include <cstdint>

#include "core/text.h"
#include "plugin/host_api.h"

namespace corvel::plugin {

class Ribbon {
 public:
  // Builds the group; images lie in `dataFolder`, which ends in a separator. `click` is what the
  // buttons call. Where the viewer makes no buttons, their ids are 0.
  void Build(const WideString& dataFolder, HostCallback click);
  // The buttons that need a model; the options need none.
  void EnableForModels(bool enabled) const;
  void EnableOpenRecent() const;
  // Shows the state of the toggle button.
  void ShowToggleState(bool down) const;

  // Ids as the viewer gave them.
  std::int32_t main = 0;
  std::int32_t mergeActive = 0;
  std::int32_t mergeVisible = 0;
  std::int32_t mergeSelected = 0;
  std::int32_t options = 0;
  std::int32_t openRecent = 0;
  // Buttons that no ribbon has: a click without an id counts as one on the first.
  std::int32_t test = 0;
  std::int32_t toggle = 0;
};

}  // namespace corvel::plugin
