// The library under test in this process, and the exports of this program that it may find.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "plugin/entry_points.h"

namespace corvel::test_host {

class Library {
 public:
  // Throws when it cannot be loaded or lacks an entry point.
  explicit Library(const std::filesystem::path& path);
  // Unloads.
  ~Library();
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;

  decltype(&::get_api_verion) getApiVersion = nullptr;
  decltype(&::get_plugin_info) getPluginInfo = nullptr;
  decltype(&::on_plugin_load) onPluginLoad = nullptr;
  decltype(&::on_plugin_unload) onPluginUnload = nullptr;
  decltype(&::on_gui_colors_change) onGuiColorsChange = nullptr;
  decltype(&::on_drag_enter) onDragEnter = nullptr;
  decltype(&::on_drag_over) onDragOver = nullptr;
  decltype(&::on_drop) onDrop = nullptr;
  decltype(&::on_model_load_v2) onModelLoadV2 = nullptr;
  decltype(&::on_model_save_v2) onModelSaveV2 = nullptr;
  decltype(&::on_undo_redo_action) onUndoRedoAction = nullptr;

  void* Module() const { return module_; }

 private:
  using EntryPoint = void (*)();
  EntryPoint Find(const char* name) const;  // null without one
  void FindEntryPoints();

  void* module_ = nullptr;
};

// True while a file is part of this process as a library.
bool IsLoaded(const std::filesystem::path& path);

// While it lives, no library that is loaded finds these exports of the program: it is an older
// viewer. Their own entries in the program's table of exports are what changes.
class HiddenExports {
 public:
  // Throws for a name that is no export.
  explicit HiddenExports(const std::vector<std::string>& names);
  ~HiddenExports();
  HiddenExports(const HiddenExports&) = delete;
  HiddenExports& operator=(const HiddenExports&) = delete;

 private:
  struct State;
  State* state_;
};

// True when a library would find an export of this program.
bool IsExported(const char* name);

}  // namespace corvel::test_host
