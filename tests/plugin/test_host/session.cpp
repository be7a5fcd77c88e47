#include "session.h"

#include <regex>
#include <system_error>

#include "quiet_output.h"

namespace corvel::test_host {

namespace {

namespace fs = std::filesystem;

// The names of the folders below the user's data come from the library's own, so that no session
// touches what another one or the user has there.
std::string UniqueStem(const WorkFolder& work) { return PathText(work.Path().filename()); }

void LinkOrCopy(const fs::path& from, const fs::path& to) {
  fs::create_directories(to.parent_path());
  std::error_code failure;
  fs::create_hard_link(from, to, failure);
  if (failure) fs::copy_file(from, to);
}

}  // namespace

Session::Session(std::string_view libraryFolder) : viewer(transcript), desktop(work) {
  const fs::path original(CORVEL_LIBRARY);
  const std::string stem = UniqueStem(work);
  libraryPath_ = work / libraryFolder / (stem + original.extension().string());
  dataFolder_ = work / "plugins" / (stem + "_data");
  userFolder_ = desktop.UserDataFolder() / "Orlenta" / "plugins" / stem;
  ownsUserFolder_ = true;
  LinkOrCopy(original, libraryPath_);
  fs::create_directories(dataFolder_.parent_path());
  fs::copy(CORVEL_DATA_DIR, dataFolder_);
  ShowFolders();
}

Session::Session(AsBuilt) : viewer(transcript), desktop(work) {
  libraryPath_ = fs::canonical(CORVEL_LIBRARY);
  dataFolder_ = libraryPath_.parent_path() / "corvel_data";
  userFolder_ = desktop.UserDataFolder() / "Orlenta" / "plugins" / "corvel";
  ShowFolders();
}

Session::~Session() {
  library_.reset();
  std::error_code ignored;
  if (ownsUserFolder_) fs::remove_all(userFolder_, ignored);
}

void Session::ShowFolders() {
  transcript.Replace(userFolder_.generic_string(), "<user>");
  transcript.Replace(dataFolder_.generic_string(), "<data>");
  transcript.Replace(work.Path().generic_string(), "<work>");
  viewer.beforeRecord = [this] { NoteBoxes(); };
}

void Session::Load() {
  transcript.Add("> load");
  library_ = std::make_unique<Library>(libraryPath_);
  desktop.Surround(library_->Module());
  viewer.events.clear();
  viewer.enabled.clear();
  viewer.click = nullptr;
  viewer.nextGroup = 1;
  viewer.nextDropDown = kMainButton;
  viewer.nextButton = kMergeActiveButton;
  std::int32_t version[2] = {};
  library_->getApiVersion(kHandle, version);
  transcript.Add("[interface " + std::to_string(version[0]) + "." + std::to_string(version[1]) +
                 "]");
  library_->onPluginLoad(kHandle, 0, nullptr);
  NoteBoxes();
}

void Session::LoadModels() { Fire("on_model_load"); }

void Session::Fire(const char* event) {
  transcript.Add(std::string("> ") + event);
  if (const auto found = viewer.events.find(event); found != viewer.events.end()) found->second();
  NoteBoxes();
}

void Session::Click(std::int32_t button) {
  transcript.Add("> click " + std::to_string(button));
  viewer.clicked = button;
  viewer.progress.clear();
  const QuietOutput quiet;
  if (viewer.click != nullptr) viewer.click();
  NoteBoxes();
}

void Session::RestartNumbers() {
  const std::vector<HostObject> all = viewer.projects;
  viewer.projects.resize(1);
  LoadModels();
  viewer.projects = all;
  LoadModels();
}

void Session::Unload() {
  transcript.Add("> unload");
  library_->onPluginUnload();
  library_.reset();
  NoteBoxes();
}

HostObject Session::AddProject(std::string_view name, std::string_view content) {
  WriteBytes(work / name, content);
  return viewer.AddProject(work / name);
}

void Session::Configure(std::string_view lines) { WriteBytes(userFolder_ / "config.txt", lines); }

void Session::NoteFile(std::string_view name) {
  NoteBoxes();
  const bool isThere = fs::exists(work / name);
  transcript.Add(std::string(name) + (isThere ? ":" : " is not there"));
  if (isThere) transcript.AddContent(ReadBytes(work / name));
}

void Session::NoteLog(std::string_view name) {
  NoteBoxes();
  const bool isThere = fs::exists(work / name);
  transcript.Add(std::string(name) + (isThere ? ":" : " is not there"));
  if (!isThere) return;
  transcript.AddLog(ReadBytes(work / name));
}

void Session::NoteBoxes() {
  for (SystemBox& box : desktop.TakeBoxes()) {
    std::string line = "[box \"" + box.title + "\": \"" + box.text + "\"";
    if (box.answeredYes) line += *box.answeredYes ? ", yes" : ", no";
    transcript.Add(line + "]");
    boxes_.push_back(std::move(box));
  }
}

}  // namespace corvel::test_host
