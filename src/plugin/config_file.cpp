#include "plugin/config_file.h"

#include <cctype>
#include <charconv>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "platform/file.h"
#include "platform/platform.h"

namespace corvel::plugin {

namespace {

#ifdef _WIN32
constexpr char kLineEnd[] = "\r\n";
#else
constexpr char kLineEnd[] = "\n";
#endif

// Where a window stands that has lost its place.
constexpr WindowPosition kFallbackPosition{100, 100};

bool IsOn(std::string_view line) { return line == "true"; }

// Blanks in front and anything behind the digits don't matter.
std::int32_t ToNumber(std::string_view line) {
  while (!line.empty() && std::isspace(static_cast<unsigned char>(line.front())) != 0) {
    line.remove_prefix(1);
  }
  // from_chars knows no plus, and would take the minus behind one.
  const bool hasPlus = line.size() > 1 && line[0] == '+' && line[1] != '-';
  if (hasPlus) line.remove_prefix(1);
  std::int32_t value = 0;
  const auto result = std::from_chars(line.data(), line.data() + line.size(), value);
  if (result.ec == std::errc::invalid_argument) {
    throw std::invalid_argument("invalid stoi argument");
  }
  if (result.ec == std::errc::result_out_of_range) {
    throw std::out_of_range("stoi argument out of range");
  }
  return value;
}

// The lines of a text one by one. A line counts if there is a byte of it, be it its end alone.
class Lines {
 public:
  explicit Lines(std::string_view text) : rest_(text) {}

  std::optional<std::string_view> Next() {
    if (rest_.empty()) return {};
    const std::size_t end = rest_.find('\n');
    std::string_view line = rest_.substr(0, end);
    rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + 1);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    return line;
  }

 private:
  std::string_view rest_;
};

// True when all lines were there.
bool Parse(std::string_view text, PluginConfig& config) {
  Lines lines(text);
  const auto readFlag = [&](bool& flag) {
    if (const auto line = lines.Next()) flag = IsOn(*line);
  };
  const auto readNumber = [&](std::int32_t& number) {
    if (const auto line = lines.Next()) number = ToNumber(*line);
  };
  readFlag(config.options.generateGuid);
  readFlag(config.options.remember);
  readFlag(config.options.ignoreUnits);
  readFlag(config.options.ignoreEnumErrors);
  readNumber(config.position.x);
  readNumber(config.position.y);
  const auto last = lines.Next();
  if (last) config.options.deleteOpenings = IsOn(*last);
  return last.has_value();
}

std::optional<std::string> ContentOf(const WideString& path) {
  platform::File file;
  if (!file.Open(path, platform::OpenMode::kRead)) return {};
  // Seven short lines; what is longer is no file of ours, and only its start is looked at.
  std::string content(4096, '\0');
  content.resize(file.Read(content.data(), content.size()));
  return content;
}

void TellError(WideView what, const WideString& path, const std::exception& error) {
  platform::Get().ShowMessageBox(
      u"Error!",
      WideString(what) + u" config file: \"" + path + u"\"\nError message: " + Widen(error.what()),
      platform::Buttons::kOk, platform::Icon::kWarning);
}

std::string TextOf(const PluginConfig& config) {
  std::string text;
  const auto add = [&](std::string_view line) { text.append(line).append(kLineEnd); };
  const auto addFlag = [&](bool flag) { add(flag ? "true" : "false"); };
  addFlag(config.options.generateGuid);
  addFlag(config.options.remember);
  addFlag(config.options.ignoreUnits);
  addFlag(config.options.ignoreEnumErrors);
  add(std::to_string(config.position.x));
  add(std::to_string(config.position.y));
  addFlag(config.options.deleteOpenings);
  return text;
}

}  // namespace

ConfigReading ReadConfig(const WideString& path, PluginConfig& config, bool& complete) {
  complete = false;
  const std::optional<std::string> content = ContentOf(path);
  if (!content) return ConfigReading::kMissing;
  try {
    complete = Parse(*content, config);
    return ConfigReading::kRead;
  } catch (const std::exception& error) {
    TellError(u"Unable to read", path, error);
    // The last line, which stands behind the one that was refused, was never read.
    const bool deleteOpenings = config.options.deleteOpenings;
    config.options = {false, false, false, false, deleteOpenings};
    config.position = kFallbackPosition;
    platform::RemoveFile(path);
    return ConfigReading::kRefused;
  }
}

void WriteConfig(const WideString& path, const PluginConfig& config) {
  const std::string text = TextOf(config);
  if (ContentOf(path) == text) return;
  platform::File file;
  if (!file.Open(path, platform::OpenMode::kWrite)) return;
  try {
    const bool written = file.Write(text.data(), text.size()) == text.size();
    if (!file.Close() || !written) throw std::runtime_error("the file could not be written whole");
  } catch (const std::exception& error) {
    TellError(u"Unable to write", path, error);
  }
}

}  // namespace corvel::plugin
