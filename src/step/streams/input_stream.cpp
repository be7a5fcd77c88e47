#include "step/streams/input_stream.h"

#include <cassert>
#include <exception>
#include <utility>

namespace FileStream {

InputStream::InputStream(const corvel::WideString& path, corvel::ErrorReporter showError)
    : extension_(ExtensionOf(path)),
      containerPath_(path.substr(0, path.find(u'|'))),
      showError_(showError) {}

int InputStream::GetChar() {
  if (!HasByte()) return IsOpen() ? -1 : 0;
  return static_cast<signed char>(*cursor_++);
}

bool InputStream::Refill() {
  assert(cursor_ == windowEnd_);
  KeepConsumed();
  while (const auto ended = std::move(interruption_)) {
    interruption_ = std::move(ended->outer);
    SetWindow(ended->cursor, ended->windowEnd);
    if (ended->tells) TellHeld();
    if (cursor_ != windowEnd_) return true;
  }
  return FillWindow();
}

void InputStream::Rewind(std::size_t kept) {
  const std::size_t back = StatementSize() - kept;
  if (back <= static_cast<std::size_t>(cursor_ - statementStart_)) {
    cursor_ -= back;
    return;
  }
  KeepConsumed();
  std::string text = carriedText_.substr(kept);
  carriedText_.resize(kept);
  Interrupt(std::move(text), false);
}

void InputStream::Replace(std::size_t kept, std::string text, bool tells) {
  KeepConsumed();
  carriedText_.resize(kept);
  Interrupt(std::move(text), tells);
}

void InputStream::Interrupt(std::string text, bool tells) {
  auto outer = std::move(interruption_);
  interruption_ = std::make_unique<Interruption>();
  interruption_->text = std::move(text);
  interruption_->tells = tells;
  interruption_->cursor = cursor_;
  interruption_->windowEnd = windowEnd_;
  interruption_->outer = std::move(outer);
  const std::string& next = interruption_->text;
  SetWindow(next.data(), next.data() + next.size());
}

void InputStream::Tell(const corvel::WideString& message) {
  if (holdsReports_) {
    heldReports_.push_back(message);
  } else if (showError_ != nullptr) {
    showError_("", message, corvel::kReportShow);
  }
}

void InputStream::TellHeld() {
  holdsReports_ = false;
  for (const corvel::WideString& message : std::exchange(heldReports_, {})) Tell(message);
}

std::int64_t InputStream::Unread() const {
  std::int64_t unread = windowEnd_ - cursor_;
  for (const Interruption* it = interruption_.get(); it != nullptr; it = it->outer.get()) {
    unread += it->windowEnd - it->cursor;
  }
  return unread;
}

std::string InputStream::StatementText() const {
  std::string text = carriedText_;
  text.append(statementStart_, cursor_);
  return text;
}

std::string_view InputStream::StatementView() {
  if (carriedText_.empty()) {
    return {statementStart_, static_cast<std::size_t>(cursor_ - statementStart_)};
  }
  KeepConsumed();
  return carriedText_;
}

void InputStream::SkipUncounted(std::size_t count) {
  KeepConsumed();
  cursor_ += count;
  statementStart_ = deliveredStart_ = cursor_;
}

void InputStream::DropWindow() noexcept {
  try {
    KeepConsumed();
  } catch (const std::exception&) {
    carriedText_.clear();
  }
  interruption_.reset();
  SetWindow(nullptr, nullptr);
}

void InputStream::KeepConsumed() {
  keptSemicolon_ = LastWasSemicolon();
  carriedText_.append(statementStart_, cursor_);
  statementStart_ = deliveredStart_ = cursor_;
}

}  // namespace FileStream
