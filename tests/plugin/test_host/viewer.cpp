#include "viewer.h"

#include <stdexcept>

#include "recorded_call.h"

namespace corvel::test_host {

namespace {

Viewer* current = nullptr;

constexpr HostObject kObjectsPerProject = 100;

}  // namespace

std::string Shown(const char16_t* text) {
  return text == nullptr ? "null" : "\"" + Utf8(std::u16string_view(text)) + "\"";
}

std::string Shown(const char* text) {
  return text == nullptr ? "null" : "\"" + std::string(text) + "\"";
}

void RecordCall(const char* name) {
  if (current != nullptr) current->Note(std::string(name) + "(?)");
}

Viewer::Viewer(Transcript& transcript) : transcript_(transcript) {
  if (current != nullptr) throw std::logic_error("two viewers at once");
  current = this;
}

Viewer::~Viewer() { current = nullptr; }

Viewer* Viewer::Current() { return current; }

HostObject Viewer::AddProject(const std::filesystem::path& file, unsigned objectCount) {
  const HostObject project = projects.size() + 1;
  projects.push_back(project);
  paths[project] = file.u16string();
  for (unsigned i = 1; i <= objectCount; ++i) {
    objects.push_back({project * kObjectsPerProject + i, project});
  }
  return project;
}

void Viewer::ClearScene() {
  projects.clear();
  objects.clear();
  paths.clear();
}

const char16_t* Viewer::TextOf(const char* key) {
  if (hasNoTexts) return nullptr;
  std::u16string& text = texts_[key];
  text = u"[" + Utf16(key) + u"]";
  return text.c_str();
}

void Viewer::Note(const std::string& line) {
  if (beforeRecord) beforeRecord();
  transcript_.Add(line);
}

std::string Viewer::CallText(plugin::HostHandle handle, const char* name,
                             const std::vector<std::string>& arguments) {
  std::string text = std::string(name) + "(";
  for (const std::string& argument : arguments) {
    if (text.back() != '(') text += ", ";
    text += argument;
  }
  text += ")";
  return handle == kHandle ? text : text + " WITH A WRONG HANDLE";
}

}  // namespace corvel::test_host
