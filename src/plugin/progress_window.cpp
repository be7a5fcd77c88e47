#include "plugin/progress_window.h"

#include <algorithm>
#include <cstdint>
#include <stdexcept>

#include "core/reporting.h"
#include "platform/file.h"
#include "plugin/host_functions.h"
#include "plugin/run_reports.h"

namespace corvel::plugin {

namespace {

constexpr std::int32_t kHidden = 0;
constexpr std::int32_t kVisible = 1;

void ShowDialog(std::int32_t visible, const WideString& title) {
  constexpr std::int32_t kOne = 1;
  CallHost(Host().show_progress_bar, visible, kOne, title.c_str());
}

// False: the user pressed cancel.
bool UpdateDialog(int overall, const WideString& overallText, int current,
                  const WideString& currentText) {
  // A viewer without bars has no cancel button either, and a missing answer would be one.
  if (Host().update_progress_bar == nullptr) return true;
  return CallHost(Host().update_progress_bar, overall, overallText.c_str(), current,
                  currentText.c_str()) != 0;
}

}  // namespace

ProgressWindow& ProgressWindow::Instance() {
  static ProgressWindow window;
  return window;
}

void ProgressWindow::InitProgress(const WideString& title) {
  if (IsOpen()) {
    ShowError("", u"Progress bar alredy initialized", kReportShow);
    return;
  }
  title_ = title.empty() ? WideString(u"Corvel") : title;
  stageBase_ = 0;
  stageWeight_ = 0;
  stageStarted_ = false;
  shownOverall_ = 0;
  ShowDialog(kVisible, title_);
}

bool ProgressWindow::UpdateProgress(int value, int stageWeight, const WideString* extraText,
                                    bool exactMode, int maximum) {
  return Instance().Update(value, stageWeight, extraText, exactMode, maximum);
}

bool ProgressWindow::Update(int value, int stageWeight, const WideString* extraText, bool exactMode,
                            int maximum) {
  if (!IsOpen()) {
    ShowError("", u"No progress bar initialized", kReportShow);
    throw std::logic_error("No progress bar initialized");
  }
  if (stageWeight >= 1 && !stageStarted_) {
    StartStage(stageWeight);
    stageStarted_ = true;
  }
  const int base = stageBase_;
  const int overall = std::max(base, base + ShareOf(value, stageWeight, exactMode, maximum));
  shownOverall_ = std::max(shownOverall_, std::clamp(overall, 0, 100));
  const WideString text = extraText == nullptr ? currentText_ : currentText_ + u" " + *extraText;
  return UpdateDialog(shownOverall_, overallText_, std::clamp(value, 0, 100), text);
}

// What of the stage's weight is done. The exact way moves on to the next stage when all of it is.
int ProgressWindow::ShareOf(int value, int stageWeight, bool exactMode, int maximum) {
  if (!exactMode || stageWeight < 1) return value * stageWeight_ / 100;
  const auto share = static_cast<int>(std::int64_t{stageWeight} * value / std::max(maximum, 1));
  if (share >= stageWeight) {
    stageBase_ += stageWeight_;
    stageWeight_ = stageWeight;
  }
  return share;
}

void ProgressWindow::SetCurrentText(const WideString& text) {
  currentText_ = text;
  currentFile_.clear();
}

void ProgressWindow::SetCurrentFile(const WideString& path) {
  currentText_.append(u": ").append(platform::FileNameOf(path));
  currentFile_ = path;
}

void ProgressWindow::StartStage(int weight) {
  stageBase_ += stageWeight_;
  stageWeight_ = weight;
  stageStarted_ = false;
}

void ProgressWindow::Reset() {
  overallText_ = u"Overall progress";
  SetCurrentText(u"Current progress");
  stageBase_ = 0;
  stageWeight_ = 0;
  stageStarted_ = false;
}

void ProgressWindow::Finish() {
  Reset();
  constexpr int kFull = 100;
  UpdateDialog(kFull, overallText_, kFull, currentText_);
  ShowDialog(kHidden, title_);
  title_.clear();
}

}  // namespace corvel::plugin
