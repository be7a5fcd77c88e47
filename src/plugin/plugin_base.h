// What any plug-in of the viewer is made of: its folders and one virtual operation for each event.
#pragma once

#include <cstdint>

#include "core/text.h"
#include "plugin/host_api.h"

namespace corvel::plugin {

// Where a plug-in finds its files. Each ends in a separator.
struct PluginFolders {
  WideString data;    // read-only resources beside the library
  WideString user;    // of this user on this machine: config.txt, LastPath.txt
  WideString common;  // of all users
};

// A library in `...\plugins_x64\` has its data below `...\plugins\`: the folder's text is cut at
// its last "_x64". The names of all three folders come from the library's own name without
// extension, `dataName` stands behind that of the data folder.
PluginFolders FoldersOf(WideView libraryPath, WideView userData, WideView commonData);

// Name of a file without its folder and extension.
WideString StemOf(WideView path);

}  // namespace corvel::plugin

namespace cpp {

// The operations stand in the order that the viewer's interface gives its events. The base reacts
// to none; every event arrives on the viewer's user-interface thread.
class PluginBase {
 public:
  using HostHandle = corvel::plugin::HostHandle;
  using PluginInformation = corvel::plugin::PluginInformation;

  // `window`: the viewer's own. Finds the folders of this library.
  explicit PluginBase(corvel::WideString pluginName);
  virtual ~PluginBase() = default;
  PluginBase(const PluginBase&) = delete;
  PluginBase& operator=(const PluginBase&) = delete;

  virtual std::int32_t ApiMajorVersion() { return corvel::plugin::kApiMajorVersion; }
  virtual std::int32_t ApiMinorVersion() { return corvel::plugin::kApiMinorVersion; }
  virtual void ApiHandshake(std::uint64_t /*hostValue*/) {}
  // Fills all fields; the texts have to live as long as this object.
  virtual void GetPluginInformation(PluginInformation& information) = 0;
  virtual std::int32_t Spare5() { return 0; }
  virtual std::int32_t OnDragEnter(const char16_t* /*path*/, std::int32_t /*x*/,
                                   std::int32_t /*y*/) {
    return 0;
  }
  virtual std::int32_t OnDragOver(std::int32_t /*x*/, std::int32_t /*y*/,
                                  std::int32_t /*keyState*/) {
    return 0;
  }
  virtual std::int32_t OnDrop(const char16_t* /*path*/, std::int32_t /*x*/, std::int32_t /*y*/,
                              std::int32_t /*keyState*/) {
    return 0;
  }
  virtual void OnPluginLoad(HostHandle host, std::int32_t flag, void* parentWindow) = 0;
  virtual void OnPluginUnload() = 0;
  virtual void Spare11() {}
  virtual void OnGuiColorsChange() {}
  virtual void OnMeasureChange() {}
  // False keeps the viewer from clearing its model.
  virtual bool CanClearModel() { return true; }
  virtual void OnModelClear() {}
  virtual void OnMainFormClose() {}
  virtual void OnSelectionChange() {}
  virtual void OnHover() {}
  virtual void OnDraw() {}
  virtual void OnDrawObjectClick(std::uint64_t /*drawObject*/) {}
  virtual void OnContextMenu() {}
  virtual void OnGalleryItemContextMenu(std::int32_t /*item*/) {}
  virtual void OnTabChange() {}
  virtual void OnPropertyChange() {}
  virtual void OnObjectListChanged() {}
  // `button`: the id that the viewer gave when it made the button.
  virtual void OnButtonClick(std::int32_t button) = 0;
  virtual void OnTabSheetPlacement(std::uint64_t /*sheet*/) {}
  virtual void OnTabSheetChange(std::uint64_t /*sheet*/) {}
  virtual void OnPluginMessage(std::uint64_t /*first*/, std::uint64_t /*second*/) {}
  virtual bool OnModelLoadV2(std::int32_t /*flag*/) { return false; }
  virtual void OnModelSaveV2() {}
  virtual void Spare32() {}
  virtual void OnModelLoad() = 0;
  virtual void OnSaveOlf() {}
  // Name of the folder with the library's resources.
  virtual corvel::WideString DataFolderName() const;

  // What the library's buttons call; handed to whatever creates one.
  corvel::plugin::HostCallback buttonClick = nullptr;
  HostHandle hostHandle = 0;
  corvel::plugin::PluginFolders folders;
  corvel::HostObject allObjectsRoot = 0;
  corvel::HostObject selectedObject = 0;
  corvel::WideString name;
  void* parentWindow = nullptr;

 private:
  corvel::WideString libraryPath_;
};

}  // namespace cpp
