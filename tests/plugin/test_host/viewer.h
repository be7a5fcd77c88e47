// The scripted viewer behind the exported functions: what is in its scene, what its dialogs answer,
// and what the plug-in has made of its ribbon.
#pragma once

#include <cstdint>
#include <deque>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "merge/host_scene.h"
#include "plugin/host_api.h"
#include "transcript.h"
#include "work_folder.h"

namespace corvel::test_host {

inline constexpr plugin::HostHandle kHandle = 0xFEDCBA9876543210;
inline constexpr HostObject kSceneRoot = 9000;

// Ids that the viewer gives to buttons, in the order in which the plug-in asks for them.
enum ButtonId : std::int32_t {
  kMainButton = 11,
  kMergeActiveButton = 21,
  kMergeVisibleButton = 22,
  kMergeSelectedButton = 23,
  kOptionsButton = 24,
  kOpenRecentButton = 25
};

struct SceneObject {
  HostObject id = 0;
  HostObject project = 0;
  std::uint32_t number = 0;  // in its file
  const char* className = nullptr;
  HostObject parent = 0;
  ObjectState state{1, 1, 1, {}};  // visible, active and selected
};

struct ProgressUpdate {
  int overall = 0;
  std::string overallText;
  int current = 0;
  std::string currentText;
};

std::string Shown(const char16_t* text);
std::string Shown(const char* text);
template <class Value>
std::string Shown(const Value& value) {
  if constexpr (std::is_pointer_v<Value>) {
    return value == nullptr                                   ? "null"
           : std::is_function_v<std::remove_pointer_t<Value>> ? "callback"
                                                              : "list";
  } else {
    return std::to_string(value);
  }
}

class Viewer {
 public:
  // Calls are written to `transcript`, which is borrowed. There is one viewer at a time.
  explicit Viewer(Transcript& transcript);
  ~Viewer();
  Viewer(const Viewer&) = delete;
  Viewer& operator=(const Viewer&) = delete;
  // Null when no scene plays.
  static Viewer* Current();

  // --- The scene
  // ----------------------------------------------------------------------------------

  // The file need not exist. Projects are 1, 2, 3 ..., and the project and the building of a house
  // are the objects 101 and 102, 201 and 202 ...
  HostObject AddProject(const std::filesystem::path& file);
  void ClearScene();
  std::vector<HostObject> projects;
  std::vector<SceneObject> objects;
  std::map<HostObject, std::u16string> paths;

  // --- The script
  // ---------------------------------------------------------------------------------

  std::u16string language = u"en";
  // What the save dialog ends with; nothing: it is cancelled.
  std::optional<std::u16string> output;
  // get_text knows no key and gives null.
  bool hasNoTexts = false;
  // get_text gives the texts of the file that load_texts was given last.
  bool readsTexts = false;
  // The update of the progress dialog, from 1, at which the user presses cancel; 0: never.
  int cancelAt = 0;
  // The user does not stop pressing.
  bool keepsCancelling = false;
  // What else happens during each update, and when the progress dialog is about to go.
  std::function<void()> duringUpdate;
  std::function<void()> beforeHiding;
  // Called before each line of the transcript, so that boxes of the system come where they belong.
  std::function<void()> beforeRecord;

  // --- What happened
  // ------------------------------------------------------------------------------

  std::vector<ProgressUpdate> progress;
  bool progressIsShown = false;
  std::map<std::int32_t, bool> enabled;                // buttons
  std::map<std::string, plugin::HostCallback> events;  // by the name of the registrar
  plugin::HostCallback click = nullptr;                // of the button that was created last
  std::int32_t clicked = 0;
  std::int32_t nextGroup = 1;
  std::int32_t nextDropDown = kMainButton;
  std::int32_t nextButton = kMergeActiveButton;

  // False without a file.
  bool LoadTexts(const std::filesystem::path& file);
  // What get_text answers: the key in brackets, so that transcripts speak of keys, unless the
  // script wants something else.
  const char16_t* TextOf(const char* key);

  void Note(const std::string& line);
  template <class... Arguments>
  void Record(plugin::HostHandle handle, const char* name, const Arguments&... arguments) {
    Note(CallText(handle, name, {Shown(arguments)...}));
  }
  // Gives `result` back.
  template <class Result, class... Arguments>
  Result RecordAnswer(Result result, plugin::HostHandle handle, const char* name,
                      const Arguments&... arguments) {
    Note(CallText(handle, name, {Shown(arguments)...}) + " = " + Shown(result));
    return result;
  }

 private:
  static std::string CallText(plugin::HostHandle handle, const char* name,
                              const std::vector<std::string>& arguments);

  Transcript& transcript_;
  std::map<std::string, std::u16string> texts_;
};

}  // namespace corvel::test_host
