#include "host/foreign_file.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "host/hearing.h"
#include "step/reader/byte_kinds.h"
#include "step/streams/model_form.h"
#include "step/streams/open_input.h"

namespace corvel::host {

namespace {

constexpr std::size_t kSmallBuffer = 0x1000;
constexpr std::size_t kBytesShown = 24;
constexpr std::string_view kFirstWord = "ISO-10303-21";

struct Signature {
  std::string_view bytes;
  const char16_t* kind;
};

constexpr Signature kSignatures[] = {
    {"\xEF\xBB\xBF", u"a byte order mark"},
    {"\xFF\xFE", u"text in UTF-16"},
    {"\xFE\xFF", u"text in UTF-16"},
    {"\x1F\x8B", u"gzip"},
    {"PK\x03\x04", u"a zip archive, whose name has to end in .ifczip"},
    {"7z\xBC\xAF\x27\x1C", u"a 7z archive"},
    {"Rar!", u"a rar archive"},
    {"%PDF", u"PDF"},
    {"\x89HDF", u"HDF5"},
    {"<?xml", u"XML"},
    {"<", u"XML or HTML"},
    {"{", u"JSON"},
};

// The first bytes behind blanks, which readers pass over. What a stream has to say against the file
// is said by those who read on.
std::string FirstBytes(const WideString& path) {
  std::vector<WideString> unheard;
  const Hearing hearing(unheard);
  std::string bytes;
  const auto stream = FileStream::OpenInput(path, kSmallBuffer, Hear);
  while (stream != nullptr && bytes.size() < kBytesShown && stream->Refill()) {
    const char* byte = stream->Cursor();
    for (; byte != stream->WindowEnd() && bytes.size() < kBytesShown; ++byte) {
      if (!bytes.empty() || !IsBlank(*byte)) bytes.push_back(*byte);
    }
    stream->SetCursor(byte);
    stream->ClearStatementText();
  }
  return bytes;
}

bool IsPlain(char c) { return c >= ' ' && c <= '~'; }

// "'<?xml version='", or the bytes in hexadecimal where they are no text.
WideString Shown(std::string_view bytes) {
  const std::string_view line = bytes.substr(0, bytes.find_first_of("\r\n"));
  if (std::all_of(line.begin(), line.end(), IsPlain)) return u"'" + Widen(std::string(line)) + u"'";
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text;
  for (const char c : bytes.substr(0, 4)) {
    const auto byte = static_cast<unsigned char>(c);
    if (!text.empty()) text += ' ';
    text += kDigits[byte >> 4];
    text += kDigits[byte & 15];
  }
  return Widen(text);
}

WideString KindOf(std::string_view bytes) {
  const auto* const found =
      std::find_if(std::begin(kSignatures), std::end(kSignatures),
                   [bytes](const Signature& known) { return bytes.starts_with(known.bytes); });
  return found == std::end(kSignatures) ? WideString() : u" (" + WideString(found->kind) + u")";
}

}  // namespace

std::optional<WideString> NoStepFile(const WideString& path) {
  const std::string bytes = FirstBytes(path);
  // A comment may stand in front of the first word.
  if (bytes.empty() || bytes.starts_with(kFirstWord) || bytes.starts_with(kCommentStart)) return {};
  const WideString what = FileStream::FormOf(path) == FileStream::ModelForm::kPlain
                              ? WideString(u"this is no STEP file, it begins with ")
                              : WideString(u"the model in it is no STEP file, it begins with ");
  return what + Shown(bytes) + KindOf(bytes);
}

}  // namespace corvel::host
