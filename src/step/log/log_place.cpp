#include "step/log/log_place.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

#include "platform/file.h"
#include "platform/native_path.h"

namespace corvel {

namespace {

namespace fs = std::filesystem;

// One letter for each of the date line, 0 standing for any digit.
constexpr std::string_view kDateLine = "[00-00-0000    00:00:00]";

bool IsDateLine(std::string_view text) {
  if (text.size() != kDateLine.size()) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (kDateLine[i] == '0' ? !IsDigit(text[i]) : text[i] != kDateLine[i]) return false;
  }
  return true;
}

bool IsLog(const WideString& path) {
  platform::File file;
  if (!file.Open(path, platform::OpenMode::kRead)) return false;
  std::string start(kDateLine.size(), '\0');
  start.resize(file.Read(start.data(), start.size()));
  return IsDateLine(start);
}

// A link is a thing of its own here: what it leads to is not looked at.
bool IsFree(const WideString& path) {
  std::error_code ignored;
  switch (fs::symlink_status(platform::NativePath(path), ignored).type()) {
    case fs::file_type::regular: return IsLog(path);
    case fs::file_type::none:  // a folder that may not be entered tells soon enough
    case fs::file_type::not_found: return true;
    default: return false;
  }
}

WideString Numbered(const WideString& path, std::uint32_t number) {
  const std::size_t dot = path.rfind(u'.');
  const std::size_t nameStart = platform::FindLastSeparator(path) + 1;
  const bool hasExtension = dot != WideString::npos && dot > nameStart;
  const std::size_t cut = hasExtension ? dot : path.size();
  return path.substr(0, cut) + ToWide(number) + path.substr(cut);
}

}  // namespace

WideString FreeLogPath(const WideString& wanted) {
  WideString path = wanted;
  for (std::uint32_t number = 2; !IsFree(path); ++number) path = Numbered(wanted, number);
  return path;
}

// Appending makes a file and never empties one: what somebody puts there after the removal stays.
bool MakeLogFile(const WideString& path) {
  if (platform::FileExists(path) && !platform::RemoveFile(path)) return false;
  platform::File file;
  return file.Open(path, platform::OpenMode::kAppend) && file.Close();
}

}  // namespace corvel
