#include "step/reader/string_decoder.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "platform/platform.h"

namespace corvel {

namespace {

constexpr int kNoByte = -1;

// Records that a string swallows have a "#", and whoever takes plain text does not look for them.
bool IsPlain(char c) { return c >= 0 && c != '\'' && c != '\\' && c != '#'; }

// Eight bytes at once: not 0 when one of them is not plain.
std::uint64_t AnyUnusual(const char* eight) {
  constexpr std::uint64_t kOnes = 0x0101010101010101u;
  constexpr std::uint64_t kHighBits = kOnes * 0x80;
  std::uint64_t bytes = 0;
  std::memcpy(&bytes, eight, sizeof bytes);
  const std::uint64_t quotes = bytes ^ (kOnes * '\'');
  const std::uint64_t slashes = bytes ^ (kOnes * '\\');
  const std::uint64_t hashes = bytes ^ (kOnes * '#');
  return (bytes | (quotes - kOnes) | (slashes - kOnes) | (hashes - kOnes)) & kHighBits;
}

// The value of a digit as it is taken: nothing checks that it is one.
std::uint32_t HexValue(int byte) {
  const int upper = byte >= 'a' && byte <= 'z' ? byte - 32 : byte;
  return static_cast<std::uint32_t>(upper < 'A' ? upper - '0' : upper - 55);
}

// The text of a string that is only passed over.
struct NoText {};

void Append(WideString& text, char16_t unit) { text.push_back(unit); }
void Append(DecodedText& text, char16_t unit) { text.Append(unit); }
void AppendAscii(WideString& text, std::string_view run) { text.append(run.begin(), run.end()); }
void AppendAscii(DecodedText& text, std::string_view run) { text.AppendAscii(run); }

// One string. The code page of \S\ and \X\ lasts for the string.
template <class Text>
class Decoder {
 public:
  Decoder(FileStream::InputStream& stream, Text& text) : stream_(stream), text_(text) {}

  bool Run() {
    for (;;) {
      TakePlainRun();
      const int byte = Take();
      if (byte == kNoByte) return false;
      if (byte == '\'') {
        if (Peek() != '\'') return true;
        Take();
        Add(u'\'');
      } else if (byte == '\\') {
        TakeDirective();
      } else {
        AddPlain(byte);
      }
    }
  }

 private:
  static constexpr bool kKeeps = !std::is_same_v<Text, NoText>;

  int Peek() {
    if (stream_.Cursor() == stream_.WindowEnd()) {
      if constexpr (!kKeeps) stream_.ClearStatementText();
      if (!stream_.Refill()) return kNoByte;
    }
    return static_cast<unsigned char>(*stream_.Cursor());
  }
  int Take() {
    const int byte = Peek();
    if (byte != kNoByte) stream_.SetCursor(stream_.Cursor() + 1);
    return byte;
  }

  // The usual case: everything up to the closing quote stands in the window.
  void TakePlainRun() {
    const char* const begin = stream_.Cursor();
    const char* end = EndOfPlainText(begin, stream_.WindowEnd());
    if constexpr (kKeeps) {
      AppendAscii(text_, {begin, end});
    } else {
      while (end != stream_.WindowEnd() && *end != '\'' && *end != '\\') ++end;
    }
    stream_.SetCursor(end);
  }

  void Add([[maybe_unused]] char16_t unit) {
    if constexpr (kKeeps) Append(text_, unit);
  }

  // A byte that stands for itself. Those above 127 are kept apart from decoded characters.
  void AddPlain(int byte) { Add(static_cast<char16_t>(byte > 127 ? kRawByteBase + byte : byte)); }

  // "\S" or "\P" that begins no directive.
  void AddUnused(char letter) {
    Add(u'\\');
    Add(static_cast<char16_t>(letter));
  }

  void TakeDirective() {
    switch (Peek()) {
      case '\\':
        Take();
        Add(u'\\');
        return;
      case 'S': TakeShifted(); return;
      case 'P': TakeCodePage(); return;
      case 'X':
        Take();
        TakeHex();
        return;
      default: Add(u'\\');
    }
  }

  // \S\c
  void TakeShifted() {
    Take();
    if (Peek() != '\\') {
      AddUnused('S');
      return;
    }
    Take();
    const int byte = Take();
    if (byte != kNoByte) AddByte(static_cast<std::uint8_t>(byte + 128));
  }

  // \Pc\ : page A is ISO 8859-1, B is 8859-2 and so on. Without its second "\" it is text, as in
  // a path that nobody has escaped.
  void TakeCodePage() {
    Take();
    const int page = Peek();
    if (page == kNoByte || page == '\'' || page == '\\') {
      AddUnused('P');
      return;
    }
    Take();
    if (Peek() == '\\') {
      Take();
      codePage_ = static_cast<unsigned>(page) + 28526u;  // 'A' gives 28591, which is ISO 8859-1
    } else {
      AddUnused('P');
      AddPlain(page);
    }
  }

  // Behind \X
  void TakeHex() {
    switch (Peek()) {
      case '\\': {
        Take();
        const int high = Take();
        const int low = high == kNoByte ? kNoByte : Take();
        if (low != kNoByte) AddByte(static_cast<std::uint8_t>(HexValue(high) * 16 + HexValue(low)));
        return;
      }
      case '2':
      case '4': TakeUnits(Take() == '2' ? 4 : 8); return;
      default: return;  // the X is dropped
    }
  }

  // Behind \X2 or \X4: digits up to the next "\" make units; a rest that makes no unit is dropped.
  void TakeUnits(unsigned digitsPerGroup) {
    if (Peek() == '\\') Take();
    std::uint32_t group = 0;
    unsigned digits = 0;
    for (int byte = Take(); byte != kNoByte; byte = Take()) {
      if (byte == '\\') {
        TakeEndOfUnits();
        return;
      }
      group = group * 16 + HexValue(byte);
      if (++digits == digitsPerGroup) {
        AddGroup(group, digitsPerGroup);
        group = digits = 0;
      }
    }
  }

  // The low half of a long group stands first, the high half only when it is not 0.
  void AddGroup(std::uint32_t group, unsigned digits) {
    Add(static_cast<char16_t>(group & 0xFFFF));
    if (digits == 8 && group >> 16 != 0) Add(static_cast<char16_t>(group >> 16));
  }

  // The rest of \X0\ behind its first "\".
  void TakeEndOfUnits() {
    for (int i = 0; i < 3; ++i) Take();
  }

  // A byte below 128 is the same in every page; one that the page does not know stays what it is.
  void AddByte(std::uint8_t byte) {
    char16_t unit = byte;
    if (kKeeps && byte > 127) unit = platform::Get().DecodeByte(codePage_, byte).value_or(unit);
    Add(unit);
  }

  FileStream::InputStream& stream_;
  Text& text_;
  unsigned codePage_ = 0;  // the system's own
};

}  // namespace

const char* EndOfPlainText(const char* at, const char* end) {
  while (end - at >= 8 && AnyUnusual(at) == 0) at += 8;
  while (at != end && IsPlain(*at)) ++at;
  return at;
}

bool DecodeString(FileStream::InputStream& stream, WideString& text) {
  return Decoder<WideString>(stream, text).Run();
}

bool DecodeString(FileStream::InputStream& stream, DecodedText& text) {
  return Decoder<DecodedText>(stream, text).Run();
}

bool SkipString(FileStream::InputStream& stream) {
  NoText none;
  return Decoder<NoText>(stream, none).Run();
}

}  // namespace corvel
