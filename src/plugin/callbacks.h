// What the viewer calls: plain functions without context, each of which hands its event to the
// plug-in that lives. Without one they do nothing, and none lets an exception out.
#pragma once

#include "plugin/host_api.h"
#include "plugin/host_functions.h"

namespace corvel::plugin::callbacks {

// For every button of ours; asks the viewer which one was clicked.
void OnButtonClick();

// Registers every event but those of models, in the order of the interface.
void Register();
// The events of models come last, when there are buttons that they can enable.
void RegisterModelEvents();

}  // namespace corvel::plugin::callbacks
