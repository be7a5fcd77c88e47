#include "platform/posix/code_pages.h"

#include <iconv.h>

#include <array>
#include <map>
#include <mutex>
#include <string>

namespace platform {

namespace {

constexpr unsigned kDefaultPage = 1252;  // what a Western Windows takes
constexpr unsigned kFirstIsoPage = 28591;

// Windows has these parts of ISO 8859 and no others.
constexpr bool IsIsoPage(unsigned codePage) {
  return (codePage >= kFirstIsoPage && codePage <= 28599) || codePage == 28603 || codePage == 28605;
}

// Windows keeps to earlier editions of the Greek and the Hebrew part than C libraries do, and a
// file has to give the same texts on every system. 0: the page has no such character.
struct Deviation {
  unsigned codePage;
  std::uint8_t byte;
  char16_t unit;
};
constexpr Deviation kWindowsDeviations[] = {
    {28597, 0xA1, u'\u02BD'}, {28597, 0xA2, u'\u02BC'}, {28597, 0xA4, 0}, {28597, 0xA5, 0},
    {28597, 0xAA, 0},         {28598, 0xAF, u'\u203E'}, {28598, 0xFD, 0}, {28598, 0xFE, 0},
};

// Characters of the bytes 128..255; 0 where the page has none.
using Table = std::array<char16_t, 128>;

std::string NameOf(unsigned codePage) {
  if (IsIsoPage(codePage)) return "ISO-8859-" + std::to_string(codePage - kFirstIsoPage + 1);
  return "CP" + std::to_string(codePage);
}

class Converter {
 public:
  explicit Converter(const std::string& from) : handle_(::iconv_open("UTF-16LE", from.c_str())) {}
  ~Converter() {
    if (IsOpen()) ::iconv_close(handle_);
  }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;

  // NOLINTNEXTLINE(performance-no-int-to-ptr): the value that iconv_open fails with
  bool IsOpen() const { return handle_ != reinterpret_cast<iconv_t>(-1); }

  // 0 when the byte alone is not one character of 16 bits.
  char16_t Convert(std::uint8_t byte) {
    char input = static_cast<char>(byte);
    std::array<unsigned char, 8> output{};
    char* from = &input;
    char* to = reinterpret_cast<char*>(output.data());
    std::size_t fromLeft = 1;
    std::size_t toLeft = output.size();
    // Forgets what the byte before may have begun.
    ::iconv(handle_, nullptr, nullptr, nullptr, nullptr);
    const std::size_t irreversible = ::iconv(handle_, &from, &fromLeft, &to, &toLeft);
    if (irreversible != 0 || output.size() - toLeft != 2) return 0;
    return static_cast<char16_t>(output[0] | (output[1] << 8));
  }

 private:
  iconv_t handle_;
};

Table TableOf(unsigned codePage) {
  Table table{};
  Converter converter(NameOf(codePage));
  if (!converter.IsOpen()) return table;
  for (unsigned byte = 128; byte < 256; ++byte) {
    table[byte - 128] = converter.Convert(static_cast<std::uint8_t>(byte));
  }
  for (const Deviation& deviation : kWindowsDeviations) {
    if (deviation.codePage == codePage) table[deviation.byte - 128u] = deviation.unit;
  }
  return table;
}

}  // namespace

std::optional<char16_t> DecodeCodePageByte(unsigned codePage, std::uint8_t byte) {
  static std::map<unsigned, Table> tables;
  static std::mutex mutex;
  if (byte < 128) return byte;
  if (codePage == 0) codePage = kDefaultPage;
  const std::scoped_lock lock(mutex);
  auto found = tables.find(codePage);
  if (found == tables.end()) found = tables.emplace(codePage, TableOf(codePage)).first;
  const char16_t unit = found->second[byte - 128u];
  if (unit == 0) return {};
  return unit;
}

}  // namespace platform
