#include "host/check/record_places.h"

#include <algorithm>
#include <charconv>
#include <exception>
#include <limits>

#include "step/carried/record_text.h"
#include "step/reader/byte_kinds.h"
#include "step/streams/line_numbers.h"
#include "step/streams/open_input.h"

namespace corvel::host {

namespace {

constexpr std::size_t kBufferSize = 0x100000;

std::size_t BehindBlanks(std::string_view text, std::size_t at) {
  while (at < text.size()) {
    const bool isComment = text.substr(at).starts_with("/*");
    if (!isComment && !IsOfKind(text[at], kBlankByte)) break;
    at = BehindPiece(text, at);
  }
  return at;
}

std::size_t BehindStatement(std::string_view text, std::size_t at) {
  while (at < text.size() && text[at] != ';') at = BehindPiece(text, at);
  return std::min(at + 1, text.size());
}

// Of `#12=` or `#12 =` at the start of the text; 0 for anything else.
std::uint32_t NumberAt(std::string_view text) {
  std::uint32_t number = 0;
  if (!text.starts_with('#')) return 0;
  const auto [end, error] = std::from_chars(text.data() + 1, text.data() + text.size(), number);
  const std::size_t behind = BehindBlanks(text, static_cast<std::size_t>(end - text.data()));
  const bool isRecord = error == std::errc() && behind < text.size() && text[behind] == '=';
  return isRecord ? number : 0;
}

}  // namespace

std::vector<RecordPlaces::Part> RecordPlaces::PartsToLookInto() const {
  std::vector<std::uint32_t> wanted;
  wanted.reserve(lines_.size());
  for (const auto& [number, found] : lines_) wanted.push_back(number);
  std::sort(wanted.begin(), wanted.end());
  std::vector<Part> parts;
  const std::vector<RecordNotes::Stretch>& all = notes_.Stretches();
  for (std::size_t i = 0; i < all.size(); ++i) {
    const auto least = std::lower_bound(wanted.begin(), wanted.end(), all[i].least);
    if (least == wanted.end() || *least > all[i].most) continue;
    const bool isLast = i + 1 == all.size();
    parts.push_back(
        {all[i].offset, isLast ? std::numeric_limits<std::int64_t>::max() : all[i + 1].offset});
  }
  return parts;
}

void RecordPlaces::Find(const WideString& path) {
  left_ = lines_.size();
  if (left_ == 0) return;
  try {
    const auto stream = FileStream::OpenInput(path, kBufferSize, nullptr);
    if (stream == nullptr || !stream->IsOpen()) return;
    FileStream::LineFeeds lineFeeds(*stream);
    std::string text;
    for (const Part& part : PartsToLookInto()) {
      if (left_ == 0) return;
      const std::uint64_t line = 1 + lineFeeds.Before(part.begin);
      lineFeeds.Take(part.end, text);
      LookInto(text, line);
    }
  } catch (const std::exception&) {
    for (auto& [number, found] : lines_) found = {};
  }
}

// Null: not wanted.
RecordPlaces::Found* RecordPlaces::FoundOf(std::uint32_t number) {
  const auto wanted = number == 0 ? lines_.end() : lines_.find(number);
  return wanted == lines_.end() ? nullptr : &wanted->second;
}

void RecordPlaces::LookInto(std::string_view text, std::uint64_t firstLine) {
  const auto lineAt = [&](std::size_t at) {
    const auto begin = text.begin();
    return firstLine + static_cast<std::uint64_t>(
                           std::count(begin, begin + static_cast<std::ptrdiff_t>(at), '\n'));
  };
  for (std::size_t at = BehindBlanks(text, 0); at < text.size();) {
    Found* const found = FoundOf(NumberAt(text.substr(at)));
    if (found != nullptr && found->line == 0) {
      found->line = lineAt(at);
      --left_;
    }
    at = BehindBlanks(text, BehindStatement(text, at));
  }
  for (std::size_t at = 0; at < text.size() && left_ != 0;) {
    Found* const found = FoundOf(NumberAt(text.substr(at)));
    if (found != nullptr && found->likeness == 0) found->likeness = lineAt(at);
    const std::size_t lineFeed = text.find('\n', at);
    at = lineFeed == std::string_view::npos ? text.size() : lineFeed + 1;
  }
}

std::uint64_t RecordPlaces::LineOf(std::uint32_t number) const {
  const auto found = lines_.find(number);
  if (found == lines_.end()) return 0;
  return found->second.line != 0 ? found->second.line : found->second.likeness;
}

}  // namespace corvel::host
