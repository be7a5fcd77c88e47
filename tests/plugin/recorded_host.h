// A viewer for tests of the shell: every call is recorded as one line of text, answers are
// settable, and any function can be missing.
#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "core/text.h"
#include "plugin/host_functions.h"
#include "support/temporary_folder.h"

namespace corvel::test {

// In place from its construction to its destruction; the plug-in is attached by Attach.
class RecordedHost {
 public:
  RecordedHost();
  ~RecordedHost();
  RecordedHost(const RecordedHost&) = delete;
  RecordedHost& operator=(const RecordedHost&) = delete;

  // `name(arguments)` of every call, in order. Texts are UTF-8 in quotes.
  std::vector<std::string> calls;
  std::vector<std::string> lookups;
  // Calls of one function.
  std::vector<std::string> CallsOf(const std::string& name) const;

  // Functions that this viewer lacks. Set before Attach.
  std::set<std::string> missing;
  std::map<std::string, WideString> texts;  // a key without text is its own text
  WideString language = u"pl";
  std::set<WideString> languageFiles;  // that load_texts can read
  struct Object {
    HostObject handle;
    HostObject project;
    ObjectState state{1, 1, 1, {}};
    std::uint32_t number = 1;  // in its file
    const char* className = "IfcProject";
    HostObject parent = 0;
  };
  std::vector<HostObject> children;        // of the root, in order
  std::function<void()> askedForChildren;  // called each time, when there is one
  std::map<HostObject, WideString> paths;
  std::vector<Object> objects;
  HostObject root = 77;
  HostObject selected = 78;
  std::int32_t clicked = 0;
  std::uint32_t loadedFiles = 1;
  WideString output;  // empty: the save dialog is cancelled
  const TemporaryFolder user;
  // Called at each tick; false presses cancel. Null: goes on.
  std::function<bool()> tick;

  // What was registered or created, by name of the function or id of the button.
  std::map<std::string, plugin::HostCallback> callbacks;
  plugin::HostQuestion canClearModel = nullptr;
  plugin::HostMessageCallback pluginMessage = nullptr;
  std::map<std::int32_t, plugin::HostCallback> clicks;
  std::map<std::int32_t, bool> enabled;

  // Makes the plug-in, with `user` for its own files.
  void Attach();
  // The same, and loads it.
  void Load();
  // A click as the user makes it.
  void Click(std::int32_t button);
  void TellModelsAreLoaded();
  // A project with one object.
  void AddProject(HostObject project, const WideString& path);

  static plugin::HostAddress Lookup(const char* name);
};

}  // namespace corvel::test
