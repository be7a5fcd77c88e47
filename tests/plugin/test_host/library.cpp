// What is the same on every system; each has the rest in a file of its own.
#include "library.h"

#include <stdexcept>
#include <type_traits>

namespace corvel::test_host {

void Library::FindEntryPoints() {
  const auto find = [this](auto& function, const char* name) {
    const EntryPoint found = Find(name);
    if (found == nullptr) throw std::runtime_error(std::string("no entry point ") + name);
    function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(found);
  };
  find(getApiVersion, "get_api_verion");
  find(getPluginInfo, "get_plugin_info");
  find(onPluginLoad, "on_plugin_load");
  find(onPluginUnload, "on_plugin_unload");
  find(onGuiColorsChange, "on_gui_colors_change");
  find(onDragEnter, "on_drag_enter");
  find(onDragOver, "on_drag_over");
  find(onDrop, "on_drop");
  find(onModelLoadV2, "on_model_load_v2");
  find(onModelSaveV2, "on_model_save_v2");
  find(onUndoRedoAction, "on_undo_redo_action");
}

}  // namespace corvel::test_host
