#include "viewer.h"

#include <sstream>
#include <stdexcept>

#include "models.h"
#include "recorded_call.h"

namespace corvel::test_host {

namespace {

Viewer* current = nullptr;

constexpr HostObject kObjectsPerProject = 100;

// What stands behind " = " in a language file, without its quotes and escapes. The files are known
// to be in order.
std::string Decoded(std::string_view text) {
  if (text.size() > 1 && text.front() == '"') text = text.substr(1, text.size() - 2);
  std::string decoded;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isEscape = text[i] == '\\' && i + 1 < text.size();
    if (!isEscape) {
      decoded += text[i];
    } else {
      ++i;
      decoded += text[i] == 'n' ? '\n' : text[i];
    }
  }
  return decoded;
}

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

HostObject Viewer::AddProject(const std::filesystem::path& file) {
  const HostObject project = projects.size() + 1;
  projects.push_back(project);
  paths[project] = file.u16string();
  const HostObject top = project * kObjectsPerProject + 1;
  objects.push_back({top, project, kProjectNumber, "IfcProject"});
  objects.push_back({top + 1, project, kBuildingNumber, "IfcBuilding", top});
  return project;
}

void Viewer::ClearScene() {
  projects.clear();
  objects.clear();
  paths.clear();
}

bool Viewer::LoadTexts(const std::filesystem::path& file) {
  if (!std::filesystem::exists(file)) return false;
  if (!readsTexts) return true;
  texts_.clear();
  std::istringstream lines(ReadBytes(file));
  for (std::string line; std::getline(lines, line);) {
    const std::size_t sign = line.find(" = ");
    if (sign == std::string::npos || line.front() == '#') continue;
    texts_[line.substr(0, sign)] = Utf16(Decoded(std::string_view(line).substr(sign + 3)));
  }
  return true;
}

const char16_t* Viewer::TextOf(const char* key) {
  if (hasNoTexts) return nullptr;
  if (readsTexts) return texts_.at(key).c_str();
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
