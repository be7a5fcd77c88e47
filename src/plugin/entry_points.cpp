#include "plugin/entry_points.h"

#include "plugin/callbacks.h"
#include "plugin/delivery.h"
#include "plugin/host_functions.h"

using corvel::plugin::Deliver;
using corvel::plugin::Plugin;

extern "C" {

void get_api_verion(std::uint64_t hostValue, std::int32_t* version) {
  Deliver([&](Plugin& plugin) {
    plugin.ApiHandshake(hostValue);
    version[0] = plugin.ApiMajorVersion();
    version[1] = plugin.ApiMinorVersion();
  });
}

void get_plugin_info(corvel::plugin::PluginInformation* information) {
  Deliver([&](Plugin& plugin) { plugin.GetPluginInformation(*information); });
}

void on_plugin_load(corvel::plugin::HostHandle host, std::int32_t flag, void* parentWindow) {
  Deliver([&](Plugin& plugin) {
    corvel::plugin::TheHostHandle() = host;
    plugin.buttonClick = &corvel::plugin::callbacks::OnButtonClick;
    corvel::plugin::callbacks::Register();
    plugin.OnPluginLoad(host, flag, parentWindow);
    corvel::plugin::callbacks::RegisterModelEvents();
  });
}

void on_plugin_unload() {
  Deliver([](Plugin& plugin) { plugin.OnPluginUnload(); });
}

void on_gui_colors_change() {
  Deliver([](Plugin& plugin) { plugin.OnGuiColorsChange(); });
}

std::int32_t on_drag_enter(const char16_t* path, std::int32_t x, std::int32_t y) {
  return Deliver(std::int32_t{0}, [&](Plugin& plugin) { return plugin.OnDragEnter(path, x, y); });
}

std::int32_t on_drag_over(std::int32_t x, std::int32_t y, std::int32_t keyState) {
  return Deliver(std::int32_t{0},
                 [&](Plugin& plugin) { return plugin.OnDragOver(x, y, keyState); });
}

std::int32_t on_drop(const char16_t* path, std::int32_t x, std::int32_t y, std::int32_t keyState) {
  return Deliver(std::int32_t{0},
                 [&](Plugin& plugin) { return plugin.OnDrop(path, x, y, keyState); });
}

bool on_model_load_v2(std::int32_t flag) {
  return Deliver(false, [&](Plugin& plugin) { return plugin.OnModelLoadV2(flag); });
}

void on_model_save_v2() {
  Deliver([](Plugin& plugin) { plugin.OnModelSaveV2(); });
}

void on_undo_redo_action() {}
}
