#include "step/reader/mended_stream.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "core/entity.h"
#include "step/reader/byte_kinds.h"
#include "step/reader/string_decoder.h"
#include "step/reader/tolerant_head.h"

namespace corvel {

namespace {

constexpr std::size_t kBlock = 0x40000;

// Behind a record that begins at `at` as nearly all do: `#12=IFCWALL(...);`, with no comment in it
// and each string on one line. Null for any other, and for one that does not stand whole in the
// window. `number` is its number.
const char* BehindPlainRecord(const char* at, const char* end, std::uint32_t& number) {
  if (at == end || *at != '#') return nullptr;
  constexpr std::ptrdiff_t kSafeDigits = 9;
  const char* const digits = ++at;
  number = 0;
  for (; at != end && IsDigit(*at); ++at) number = number * 10 + static_cast<unsigned>(*at - '0');
  if (at == end || *at != '=' || at - digits > kSafeDigits || number == 0) return nullptr;
  int depth = 0;
  for (++at; at != end; ++at) {
    const char c = *at;
    if (c == '\'') {
      do {
        ++at;
        // A quote may stand behind `\S\` as any other letter.
        while (at != end && *at != '\'' && *at != '\n' && !(*at == 'S' && at[-1] == '\\')) ++at;
        if (at == end || *at != '\'') return nullptr;
      } while (at + 1 != end && at[1] == '\'' && ++at != end);
    } else if (c == '(') {
      ++depth;
    } else if (c == ')') {
      if (--depth < 0) return nullptr;
      if (depth == 0) return at + 1 != end && at[1] == ';' ? at + 2 : nullptr;
    } else if (c == ';' || c == '/' || c == '=' || c <= 0) {
      return nullptr;
    }
  }
  return nullptr;
}

}  // namespace

bool MendedStream::Numbers::Add(std::uint32_t number) {
  const std::uint32_t page = number >> kPageBits;
  if (lastPage_ == nullptr || page != last_) {
    last_ = page;
    lastPage_ = &pages_[page];
  }
  auto bit = (*lastPage_)[number & ((1u << kPageBits) - 1)];
  if (bit) return false;
  bit = true;
  largest_ = std::max(largest_, number);
  return true;
}

bool MendedStream::Numbers::Has(std::uint32_t number) const {
  const auto page = pages_.find(number >> kPageBits);
  return page != pages_.end() && page->second.test(number & ((1u << kPageBits) - 1));
}

MendedStream::MendedStream(std::unique_ptr<Scanner> file, corvel::ErrorReporter showError)
    : InputStream({}, showError), file_(std::move(file)) {}

std::size_t MendedStream::Read(void* destination, std::size_t count) {
  char* const bytes = static_cast<char*>(destination);
  std::size_t copied = 0;
  while (copied < count && HasByte()) {
    const std::size_t part =
        std::min(count - copied, static_cast<std::size_t>(WindowEnd() - Cursor()));
    std::memcpy(bytes + copied, Cursor(), part);
    SkipUncounted(part);
    copied += part;
  }
  return copied;
}

int MendedStream::PeekChar() { return HasByte() ? static_cast<signed char>(*Cursor()) : -1; }

int MendedStream::Close() {
  DropWindow();
  open_ = false;
  return 0;
}

bool MendedStream::FillWindow() {
  if (!open_ || ended_) return false;
  block_.clear();
  if (!std::exchange(hasHead_, true)) AddHead();
  while (block_.size() < kBlock) {
    AddPlainRecords();
    if (AddRecord()) continue;
    AddEnd();
    break;
  }
  SetWindow(block_.data(), block_.data() + block_.size());
  return !block_.empty();
}

void MendedStream::AddHead() {
  block_ = TakeTolerantHead(*file_).text;
  block_ += "\nDATA;\n";
}

// As many as stand whole in the window.
void MendedStream::AddPlainRecords() {
  FileStream::InputStream& stream = *file_->Stream();
  while (block_.size() < kBlock) {
    const char* at = stream.Cursor();
    while (at != stream.WindowEnd() && IsBlank(*at)) ++at;
    std::uint32_t number = 0;
    const char* const behind = BehindPlainRecord(at, stream.WindowEnd(), number);
    if (behind == nullptr || !numbers_.Add(number)) return;
    block_.append(at, behind).push_back('\n');
    stream.SetCursor(behind);
    stream.ClearStatementText();
  }
}

// False at the end of the file.
bool MendedStream::AddRecord() {
  if (numbers_.Largest() != 0) borders_.EnterData();
  std::uint32_t number = 0;
  switch (borders_.FindRecord(*file_, number)) {
    case TolerantBorders::Found::kEnd: return false;
    case TolerantBorders::Found::kNumberlessRecord: number = 0; break;
    case TolerantBorders::Found::kRecord: break;
  }
  std::string text = mender_.Take(*file_, number).text;
  file_->Stream()->ClearStatementText();
  if (number != 0 && numbers_.Add(number)) {
    AddText(number, text);
  } else {
    putAside_.push_back(std::move(text));
  }
  return true;
}

void MendedStream::AddText(std::uint32_t number, const std::string& text) {
  block_.append("#").append(std::to_string(number)).append("=").append(text).append(";\n");
}

// Free numbers are those that the parser takes.
void MendedStream::AddEnd() {
  ended_ = true;
  std::uint32_t number = numbers_.Largest();
  for (const std::string& text : putAside_) {
    ++number;
    if (number == 0 || number > IFC::kLargestNumber) number = 1;
    while (numbers_.Has(number)) ++number;
    AddText(number, text);
  }
  block_ += "ENDSEC;\n";
  if (file_->MetClosingLine()) block_ += "END-ISO-10303-21;\n";
}

}  // namespace corvel
