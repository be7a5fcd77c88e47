// The user's choices in config.txt: seven lines, each known by its place.
#pragma once

#include <functional>

#include "core/text.h"
#include "plugin/options_window.h"

namespace corvel::plugin {

struct PluginConfig {
  MergeOptions options;     // lines 1 to 4, and 7 for the deleting of openings
  WindowPosition position;  // lines 5 and 6
};

enum class ConfigReading {
  kMissing,  // nothing changed
  kRead,     // lines that the file lacks changed nothing
  kRefused   // shown to the user; the file is gone, and everything is off
};

// Reads the file at `path` into `config`. `complete` becomes true when line 7 was there, and false
// otherwise. Throws nothing but for lack of memory; shows a box when it refuses.
ConfigReading ReadConfig(const WideString& path, PluginConfig& config, bool& complete);

// Writes all lines. A file that has them already is left alone, so that programs that run side by
// side read no half of it. One that cannot be opened is passed over, one that cannot be written is
// told in a box. The folder has to be there.
void WriteConfig(const WideString& path, const PluginConfig& config);

}  // namespace corvel::plugin
