#include "plugin/federation_file.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>

#include "platform/file.h"

namespace corvel::plugin {

namespace {

constexpr std::size_t kLargestFile = 0x100000;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

using Mistake = std::optional<std::string>;
// Nothing for an option without "=".
using Value = std::optional<std::string_view>;

Mistake TurnOn(const Value& value, bool& option) {
  if (value) return "takes no value";
  option = true;
  return {};
}

Mistake TakeEither(const Value& value, std::string_view usual, std::string_view other,
                   bool& isOther) {
  isOther = value == other;
  if (isOther || value == usual) return {};
  return "takes '" + std::string(usual) + "' or '" + std::string(other) + "'";
}

Mistake TakeTolerant(const Value& value, FederationOptions& options) {
  return TurnOn(value, options.tolerant);
}

Mistake TakeContexts(const Value& value, FederationOptions& options) {
  return TakeEither(value, "keep", "join", options.steps.joinContexts);
}

Mistake TakeGuids(const Value& value, FederationOptions& options) {
  bool renew = false;
  Mistake mistake = TakeEither(value, "keep", "renew", renew);
  options.steps.guids = renew ? GuidHandling::kRenew : GuidHandling::kKeep;
  return mistake;
}

Mistake TakeHeader(const Value& value, FederationOptions& options) {
  return TakeEither(value, "told", "new", options.steps.newHeader);
}

Mistake TakePrune(const Value& value, FederationOptions& options) {
  return TurnOn(value, options.steps.prune);
}

Mistake TakeStamp(const Value& value, FederationOptions& options) {
  return TurnOn(value, options.steps.stamp);
}

struct FileOption {
  std::string_view name;
  // What is wrong with the value, or nothing.
  Mistake (*take)(const Value& value, FederationOptions& options);
};

// As on the command line.
constexpr FileOption kOptions[] = {{"tolerant", TakeTolerant}, {"contexts", TakeContexts},
                                   {"guids", TakeGuids},       {"header", TakeHeader},
                                   {"prune", TakePrune},       {"stamp", TakeStamp}};

std::string_view Trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r";
  const std::size_t begin = text.find_first_not_of(kBlanks);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

Mistake TakeLine(std::string_view line, FederationOptions& options) {
  line = Trimmed(line.substr(0, line.find('#')));
  if (line.empty()) return {};
  const std::size_t equal = line.find('=');
  const std::string_view name = Trimmed(line.substr(0, equal));
  Value value;
  if (equal != std::string_view::npos) value = Trimmed(line.substr(equal + 1));
  const std::string quoted = "'" + std::string(name) + "'";
  const auto* const option =
      std::find_if(std::begin(kOptions), std::end(kOptions),
                   [name](const FileOption& known) { return known.name == name; });
  if (option == std::end(kOptions)) return "there is no option " + quoted;
  const Mistake mistake = option->take(value, options);
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
