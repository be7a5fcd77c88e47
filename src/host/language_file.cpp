#include "host/language_file.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <utility>

#include "platform/file.h"

namespace corvel::host {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kBlanks = " \t\r";

// Either the text of a line or the reason why it has none.
struct Reading {
  WideString text;
  const char16_t* problem = nullptr;
};

Reading Refused(const char16_t* problem) { return {{}, problem}; }

std::string_view Trim(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::optional<std::string> ReadWhole(const WideString& path) {
  platform::File file;
  if (!file.Open(path, platform::OpenMode::kRead)) return {};
  std::string bytes;
  std::array<char, 0x4000> part;
  while (const std::size_t count = file.Read(part.data(), part.size())) {
    bytes.append(part.data(), count);
    if (bytes.size() > LanguageFile::kLargestFile) return {};
  }
  if (file.ReadFailed()) return {};
  return bytes;
}

bool IsKey(std::string_view key) {
  return !key.empty() && std::all_of(key.begin(), key.end(), [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
           c == '.' || c == '-';
  });
}

// True when a unit of `text` stands for a byte that was no UTF-8: only those are second halves of a
// pair without a first one.
bool HoldsRawByte(WideView text) {
  bool inPair = false;
  for (const char16_t unit : text) {
    if (!inPair && unit >= 0xDC00 && unit <= 0xDFFF) return true;
    inPair = unit >= 0xD800 && unit <= 0xDBFF;
  }
  return false;
}

std::optional<char> Unescape(char letter) {
  switch (letter) {
    case 'n': return '\n';
    case '\\':
    case '"': return letter;
    default: return {};
  }
}

// Takes the escapes out of what stands behind "=". `quoted` has lost its opening quote, and the
// closing one ends it.
Reading Decode(std::string_view text, bool quoted) {
  std::string bytes;
  std::size_t at = 0;
  for (; at < text.size(); ++at) {
    if (quoted && text[at] == '"') break;
    if (text[at] != '\\') {
      bytes.push_back(text[at]);
      continue;
    }
    if (++at == text.size()) return Refused(u"a backslash stands at the end.");
    const auto letter = Unescape(text[at]);
    if (!letter) return Refused(u"only n, \\ and \" may follow a backslash.");
    bytes.push_back(*letter);
  }
  if (quoted && at == text.size()) return Refused(u"the closing quote is missing.");
  if (quoted && at + 1 != text.size()) return Refused(u"something follows the closing quote.");
  Reading reading{FromUtf8(bytes)};
  if (HoldsRawByte(reading.text)) return Refused(u"the text is not UTF-8.");
  return reading;
}

Reading ReadText(std::string_view text) {
  if (text.empty()) return Refused(u"the text is missing.");
  const bool quoted = text.front() == '"';
  return Decode(quoted ? text.substr(1) : text, quoted);
}

// One pass over the lines of a file.
class LineReader {
 public:
  explicit LineReader(const WideString& path) : path_(path) {}

  void ReadAll(std::string_view bytes) {
    if (bytes.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
      bytes.remove_prefix(kByteOrderMark.size());
    }
    while (!bytes.empty()) {
      const std::size_t end = std::min(bytes.find('\n'), bytes.size());
      ++number_;
      ReadLine(Trim(bytes.substr(0, end)));
      bytes.remove_prefix(std::min(end + 1, bytes.size()));
    }
  }

  std::map<std::string, WideString, std::less<>> texts;
  std::vector<WideString> problems;

 private:
  void ReadLine(std::string_view line) {
    if (line.empty() || line.front() == '#') return;
    const std::size_t equal = line.find('=');
    if (equal == std::string_view::npos) return Complain(u"there is no \"=\".");
    const std::string_view key = Trim(line.substr(0, equal));
    if (!IsKey(key)) return Complain(u"there is no proper key before the \"=\".");
    Reading reading = ReadText(Trim(line.substr(equal + 1)));
    if (reading.problem != nullptr) return Complain(reading.problem);
    if (!texts.try_emplace(std::string(key), std::move(reading.text)).second) {
      Complain(u"the key \"" + Widen(key) + u"\" has a text already.");
    }
  }

  void Complain(const WideString& reason) {
    problems.push_back(path_ + u", line " + ToWide(number_) + u": " + reason);
  }

  const WideString& path_;
  std::uint32_t number_ = 0;
};

}  // namespace

bool LanguageFile::Load(const WideString& path) {
  const std::optional<std::string> bytes = ReadWhole(path);
  if (!bytes) return false;
  Parse(*bytes, path);
  return true;
}

void LanguageFile::Parse(std::string_view bytes, const WideString& name) {
  LineReader reader(name);
  reader.ReadAll(bytes);
  texts_ = std::move(reader.texts);
  problems_ = std::move(reader.problems);
}

const WideString* LanguageFile::Find(std::string_view key) const {
  const auto found = texts_.find(key);
  return found == texts_.end() ? nullptr : &found->second;
}

}  // namespace corvel::host
