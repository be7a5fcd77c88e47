// The eleven functions that the library exports to the viewer. All run on its user-interface
// thread, and none lets an exception out.
#pragma once

#include <cstdint>

#include "plugin/host_api.h"

extern "C" {

// Writes the two numbers of the interface version that the plug-in was built for.
void get_api_verion(std::uint64_t hostValue, std::int32_t* version);
// Fills all fields; the texts live as long as the plug-in.
void get_plugin_info(corvel::plugin::PluginInformation* information);
// Registers the events and builds the buttons. May come again without an unload between. `host` is
// the first argument of every call from then on; `flag` is not looked at.
void on_plugin_load(corvel::plugin::HostHandle host, std::int32_t flag, void* parentWindow);
// Keeps the user's choices. The plug-in lives on until the library goes.
void on_plugin_unload();
void on_gui_colors_change();
// The three of dragging give 0: nothing that is dragged here is taken. The path is borrowed.
std::int32_t on_drag_enter(const char16_t* path, std::int32_t x, std::int32_t y);
std::int32_t on_drag_over(std::int32_t x, std::int32_t y, std::int32_t keyState);
std::int32_t on_drop(const char16_t* path, std::int32_t x, std::int32_t y, std::int32_t keyState);
bool on_model_load_v2(std::int32_t flag);
void on_model_save_v2();
void on_undo_redo_action();
}
