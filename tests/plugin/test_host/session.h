// One life of the plug-in in the viewer, from its loading to its end, in a folder of its own.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "desktop.h"
#include "library.h"
#include "transcript.h"
#include "viewer.h"
#include "work_folder.h"

namespace corvel::test_host {

class Session {
 public:
  // Puts the library and its data below `libraryFolder` of the work folder.
  explicit Session(std::string_view libraryFolder = "plugins");
  // Takes the library from where the build leaves it, with what lies beside it there. Its folder
  // for the user's data may be the real one: what writes there, Unload above all, is not for this.
  struct AsBuilt {};
  explicit Session(AsBuilt);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  WorkFolder work;
  Transcript transcript;
  Viewer viewer;
  Desktop desktop;

  // What the viewer does. Each is noted in the transcript.
  void Load();
  void LoadModels();
  void Click(std::int32_t button);
  void Fire(const char* event);
  void Unload();
  // Loads the first model alone and then all: the numbers of new entities start over.
  void RestartNumbers();

  // Writes a model or anything else into the work folder and makes it a project.
  HostObject AddProject(std::string_view name, std::string_view content);
  void SetOutput(std::string_view name) { viewer.output = (work / name).u16string(); }
  // Writes the seven lines of config.txt.
  void Configure(std::string_view lines);

  Library& TheLibrary() { return *library_; }
  const std::filesystem::path& LibraryPath() const { return libraryPath_; }
  const std::filesystem::path& DataFolder() const { return dataFolder_; }
  // The plug-in's own folder for the user's data.
  const std::filesystem::path& UserFolder() const { return userFolder_; }

  // A file of the work folder and its content, in the transcript. A missing one is noted as such.
  void NoteFile(std::string_view name);
  void NoteLog(std::string_view name);
  void NoteOpened() { viewer.Note("[" + desktop.TakeOpened() + "]"); }
  // Boxes of the system that nobody has seen yet.
  void NoteBoxes();

  // All boxes of the system so far, or since they were forgotten.
  const std::vector<SystemBox>& Boxes() const { return boxes_; }
  // For long scenes: what is kept of boxes counts as memory of the process.
  void ForgetBoxes() { std::vector<SystemBox>().swap(boxes_); }
  std::string Golden() const { return transcript.Text(); }

 private:
  // Names the folders in transcripts.
  void ShowFolders();

  std::filesystem::path libraryPath_;
  std::filesystem::path dataFolder_;
  std::filesystem::path userFolder_;
  bool ownsUserFolder_ = false;
  std::unique_ptr<Library> library_;
  std::vector<SystemBox> boxes_;
};

}  // namespace corvel::test_host
