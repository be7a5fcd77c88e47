// The life of the plug-in within the process.
#pragma once

#include "core/text.h"
#include "plugin/host_functions.h"

namespace corvel::plugin {

// Finds the viewer's functions, once per process, and makes the one Plugin. A second call without a
// Detach between does nothing. Called by the system's loader, which holds its lock meanwhile: to be
// kept short.
void Attach(HostLookup lookup);
// Destroys the Plugin; does nothing without one.
void Detach();
// Lets the next Attach look the functions up again, for tests.
void ForgetBinding();

}  // namespace corvel::plugin
