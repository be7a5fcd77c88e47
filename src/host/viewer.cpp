#include "host/viewer.h"

#include <utility>

#include "host/built_in_texts.h"
#include "host/display_text.h"
#include "plugin/progress_window.h"
#include "step/log/ifc_log.h"

namespace corvel::host {

namespace {

Viewer* alive = nullptr;

}  // namespace

Viewer::Viewer(RunConsole& console, ViewerScene scene, WideString output)
    : console_(console), scene_(std::move(scene)), output_(std::move(output)) {
  texts_.Parse(kBuiltInTexts, u"the built-in texts");
  alive = this;
}

Viewer::~Viewer() { alive = nullptr; }

Viewer* Viewer::Instance() { return alive; }

void Viewer::TellModelsAreLoaded() const {
  if (modelLoaded_ != nullptr) modelLoaded_();
}

void Viewer::Click(std::int32_t button) {
  if (button < 1 || static_cast<std::size_t>(button) > buttons_.size()) return;
  const Button& pressed = buttons_[static_cast<std::size_t>(button) - 1];
  if (!pressed.enabled || pressed.click == nullptr) return;
  clickedButton_ = button;
  pressed.click();
}

bool Viewer::LoadTexts(const WideString& path) { return texts_.Load(path); }

const char16_t* Viewer::Text(std::string_view key) {
  if (const WideString* const text = texts_.Find(key)) return text->c_str();
  return unknownTexts_.try_emplace(std::string(key), Widen(key)).first->second.c_str();
}

// Where the log lies is told once, at the end of the run; which file is meant is told here.
void Viewer::ShowBox(WideView text) {
  const WideString logLine =
      u"\n" + WideString(Text("merge_combine_log")) + u" " + IfcLog::Instance().Path();
  if (text.ends_with(logLine)) text.remove_suffix(logLine.size());
  const WideString& file = plugin::ProgressWindow::Instance().CurrentFile();
  console_.Say(file.empty() ? WideString(text) : Printable(file) + u": " + WideString(text));
}

void Viewer::ShowProgress(bool visible) {
  if (!visible) console_.EraseBars();
}

bool Viewer::UpdateProgress(const ProgressView& view) { return console_.Draw(view); }

std::int32_t Viewer::CreateButton(plugin::HostCallback click) {
  buttons_.push_back({click});
  return static_cast<std::int32_t>(buttons_.size());
}

void Viewer::EnableButton(std::int32_t button, bool enabled) {
  if (button >= 1 && static_cast<std::size_t>(button) <= buttons_.size()) {
    buttons_[static_cast<std::size_t>(button) - 1].enabled = enabled;
  }
}

}  // namespace corvel::host
