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
  if (const auto replay = std::move(replay_)) {
    SetWindow(replay->cursor, replay->windowEnd);
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
  auto replay = std::make_unique<Replay>();
  replay->text.assign(carriedText_, kept);
  replay->cursor = cursor_;
  replay->windowEnd = windowEnd_;
  if (replay_ != nullptr) {
    replay->text.append(cursor_, windowEnd_);
    replay->cursor = replay_->cursor;
    replay->windowEnd = replay_->windowEnd;
  }
  carriedText_.resize(kept);
  replay_ = std::move(replay);
  SetWindow(replay_->text.data(), replay_->text.data() + replay_->text.size());
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
  replay_.reset();
  SetWindow(nullptr, nullptr);
}

void InputStream::KeepConsumed() {
  keptSemicolon_ = LastWasSemicolon();
  carriedText_.append(statementStart_, cursor_);
  statementStart_ = deliveredStart_ = cursor_;
}

}  // namespace FileStream
