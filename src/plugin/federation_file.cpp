#include "plugin/federation_file.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "merge/federation/federation_options.h"
#include "platform/file.h"

namespace corvel::plugin {

namespace {

constexpr std::size_t kLargestFile = 0x100000;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

using Mistake = std::optional<std::string>;
// Nothing for an option without "=".
using Value = std::optional<std::string_view>;

constexpr std::string_view kTolerant = "tolerant";
constexpr std::string_view kReport = "report";
constexpr const char* kTakesNoValue = "takes no value";

std::string_view Trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r";
  const std::size_t begin = text.find_first_not_of(kBlanks);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

Mistake TakeTolerant(const Value& value, FederationOptions& options) {
  if (value) return kTakesNoValue;
  options.tolerant = true;
  return {};
}

Mistake TakeReport(const Value& value, FederationOptions& options) {
  if (value != "html") return "takes 'html'";
  options.reports = true;
  return {};
}

// The same names and words as on the command line.
Mistake TakeStep(const FederationOption& option, const Value& value, FederationChoices& steps) {
  if (value && !option.takesValue) return kTakesNoValue;
  return option.take(value.value_or(std::string_view()), steps);
}

Mistake TakeLine(std::string_view line, FederationOptions& options) {
  line = Trimmed(line.substr(0, line.find('#')));
  if (line.empty()) return {};
  const std::size_t equal = line.find('=');
  const std::string_view name = Trimmed(line.substr(0, equal));
  Value value;
  if (equal != std::string_view::npos) value = Trimmed(line.substr(equal + 1));
  const std::string quoted = "'" + std::string(name) + "'";
  const FederationOption* const option = FindFederationOption(name);
  const bool isOurs = name == kTolerant || name == kReport;
  if (option == nullptr && !isOurs) return "there is no option " + quoted;
  const Mistake mistake = option != nullptr   ? TakeStep(*option, value, options.steps)
                          : name == kTolerant ? TakeTolerant(value, options)
                                              : TakeReport(value, options);
  if (!mistake) return {};
  return quoted + " " + *mistake;
}

// False when it is there and cannot be read.
bool ReadContent(const WideString& path, std::string& content) {
  if (!platform::FileExists(path)) return true;
  platform::File file;
  if (!file.Open(path, platform::OpenMode::kRead)) return false;
  content.resize(kLargestFile);
  content.resize(file.Read(content.data(), content.size()));
  return !file.ReadFailed() && content.size() < kLargestFile;
}

}  // namespace

std::optional<WideString> ReadFederationFile(const WideString& path, FederationOptions& options) {
  options = {};
  std::string content;
  if (!ReadContent(path, content)) return path + u": this file cannot be read.";
  std::string_view rest = content;
  if (rest.starts_with(kByteOrderMark)) rest.remove_prefix(kByteOrderMark.size());
  for (std::uint32_t line = 1; !rest.empty(); ++line) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    if (const Mistake mistake = TakeLine(rest.substr(0, end), options)) {
      return path + u", line " + ToWide(line) + u": " + FromUtf8(*mistake) + u".";
    }
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return {};
}

}  // namespace corvel::plugin
