#include "host/header_look.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "host/display_text.h"
#include "host/model_opening.h"
#include "step/streams/open_input.h"

namespace corvel::host {

namespace {

// Enough for any header that is not made to be long; the scanner refills for those.
constexpr std::size_t kSmallBuffer = 0x10000;
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

bool IsBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// The first bytes behind blanks, which readers pass over.
std::string FirstBytes(const WideString& path) {
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

bool NothingServes(const WideString& identifier) {
  std::vector<WideString> remarks;
  std::vector<WideString> problems;
  return !ChooseSchema(identifier, remarks, problems);
}

}  // namespace

std::optional<WideString> NoStepFile(const WideString& path) {
  const std::string bytes = FirstBytes(path);
  // A comment may stand in front of the first word.
  if (bytes.empty() || bytes.starts_with(kFirstWord) || bytes.starts_with("/*")) return {};
  const WideString what = FileStream::ExtensionOf(path) == u".ifc"
                              ? WideString(u"this is no STEP file, it begins with ")
                              : WideString(u"the model in it is no STEP file, it begins with ");
  return what + Shown(bytes) + KindOf(bytes);
}

HeaderLook LookAtHeader(const WideString& path) {
  HeaderLook look;
  look.trouble = NoStepFile(path);
  if (look.trouble) return look;
  std::vector<WideString> problems;
  Scanner scanner(path, kSmallBuffer, Hear);
  const auto header = scanner.IsOpen() ? ReadHeader(scanner, problems) : nullptr;
  if (header != nullptr) {
    look.schemaIdentifier = header->schemaIdentifier;
  } else {
    look.trouble =
        problems.empty() ? WideString(u"this file cannot be opened for reading") : problems.front();
  }
  return look;
}

std::vector<SchemaTrouble> TroubleWithSchemas(const std::vector<WideString>& inputs,
                                              const std::vector<HeaderLook>& looks) {
  const WideString& first = looks.front().schemaIdentifier;
  if (NothingServes(first)) return {{0, u"no release of IFC serves its schema '" + first + u"'"}};
  const WideString ofFirst =
      u"', and that of the first, " + Printable(inputs.front()) + u", is '" + first + u"'";
  std::vector<SchemaTrouble> differing;
  for (std::size_t i = 1; i < looks.size(); ++i) {
    const WideString& schema = looks[i].schemaIdentifier;
    if (schema == first) return {};
    differing.push_back({i, WideString(u"its schema is '").append(schema).append(ofFirst)});
  }
  return differing;
}

}  // namespace corvel::host
