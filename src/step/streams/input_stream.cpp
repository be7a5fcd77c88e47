#include "step/streams/input_stream.h"

#include <cassert>
#include <exception>

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
  return FillWindow();
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
  SetWindow(nullptr, nullptr);
}

void InputStream::KeepConsumed() {
  keptSemicolon_ = LastWasSemicolon();
  carriedText_.append(statementStart_, cursor_);
  statementStart_ = deliveredStart_ = cursor_;
}

}  // namespace FileStream
