// The headless viewer: what the plug-in finds in the place of a desktop viewer.
//
// It has a scene (viewer_scene.h), buttons that nobody sees, a save dialog whose answer is known,
// and the terminal for everything that is to be shown. The functions that the program exports
// (viewer_exports.cpp) hand each call to the viewer that lives.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "core/text.h"
#include "host/language_file.h"
#include "host/run_console.h"
#include "host/viewer_scene.h"
#include "plugin/host_api.h"

namespace corvel::host {

class Viewer {
 public:
  // Borrows `console`. The output may be empty: nobody asks for it then.
  Viewer(RunConsole& console, ViewerScene scene, WideString output);
  ~Viewer();
  Viewer(const Viewer&) = delete;
  Viewer& operator=(const Viewer&) = delete;

  // The one that lives; null without one.
  static Viewer* Instance();

  // --- What a user does -------------------------------------------------------------------------

  // All models are there.
  void TellModelsAreLoaded() const;
  // Presses a button; one that is disabled or was never made does nothing.
  void Click(std::int32_t button);

  // --- What the plug-in asks for ----------------------------------------------------------------

  ViewerScene& Scene() { return scene_; }
  const WideString& Output() const { return output_; }

  // False when the file cannot be read; the texts are then those of before.
  bool LoadTexts(const WideString& path);
  // The text of a key; the key itself without one. It stays valid as long as the viewer lives.
  const char16_t* Text(std::string_view key);

  void ShowBox(WideView text);
  void ShowProgress(bool visible);
  // False: the user wants to stop.
  bool UpdateProgress(const ProgressView& view);

  // The id of the new button, from 1 on. `click` may be null: a button that only opens others.
  std::int32_t CreateButton(plugin::HostCallback click);
  void EnableButton(std::int32_t button, bool enabled);
  std::int32_t ClickedButton() const { return clickedButton_; }
  void SetModelLoadCallback(plugin::HostCallback callback) { modelLoaded_ = callback; }

 private:
  struct Button {
    plugin::HostCallback click = nullptr;
    bool enabled = true;
  };

  RunConsole& console_;
  ViewerScene scene_;
  WideString output_;
  LanguageFile texts_;
  std::map<std::string, WideString, std::less<>> unknownTexts_;
  std::vector<Button> buttons_;  // ids count from 1
  std::int32_t clickedButton_ = 0;
  plugin::HostCallback modelLoaded_ = nullptr;
};

}  // namespace corvel::host
