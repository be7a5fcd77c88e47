#include "host/file_names.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <system_error>

#include "core/text.h"
#include "platform/file.h"
#include "platform/native_path.h"
#include "platform/standard_streams.h"
#include "step/streams/model_form.h"

namespace corvel::host {

namespace {

namespace fs = std::filesystem;
using Files = std::vector<std::string>;
using Found = std::variant<Files, std::string>;

#ifdef _WIN32
constexpr bool kExpandsPatterns = true;
constexpr const char* kSeparators = "/\\:";  // a drive has a folder of its own
#else
constexpr bool kExpandsPatterns = false;
constexpr const char* kSeparators = "/";
#endif

std::string Quoted(const std::string& word) { return "'" + word + "'"; }

bool IsModel(const std::string& name) {
  using FileStream::ModelForm;
  const ModelForm form = FileStream::FormOf(FromUtf8(name));
  return form == ModelForm::kPlain || form == ModelForm::kPacked;
}

// Names of what lies in a folder, but for folders; sorted. Nothing: it cannot be looked into.
std::optional<Files> NamesIn(const std::string& folder) {
  std::error_code error;
  fs::directory_iterator at(platform::NativePath(FromUtf8(folder)), error);
  if (error) return std::nullopt;
  Files names;
  for (; at != fs::directory_iterator(); at.increment(error)) {
    std::error_code ignored;
    if (at->is_directory(ignored)) continue;
    names.push_back(ToUtf8(platform::FromNativePath(at->path().filename())));
  }
  if (error) return std::nullopt;  // which ends the walk as the last name does
  std::sort(names.begin(), names.end());
  return names;
}

// Adds what in `folder`, which is in front of each name, is wanted. Nothing, or what is wrong.
template <class IsWanted>
std::optional<std::string> AddFrom(const std::string& folder, const std::string& word,
                                   IsWanted isWanted, const std::string& nothing, Files& files) {
  const auto names = NamesIn(folder.empty() ? "." : folder);
  if (!names) return Quoted(word) + ": this folder cannot be looked into";
  const std::size_t before = files.size();
  for (const std::string& name : *names) {
    if (isWanted(name)) files.push_back(folder + name);
  }
  if (files.size() == before) return Quoted(word) + ": " + nothing;
  return std::nullopt;
}

// All bytes of the list. Nothing: it cannot be read.
std::optional<std::string> BytesOf(const std::string& listing) {
  std::string bytes;
  std::array<char, 0x4000> block{};
  if (listing == "-") {
    for (;;) {
      const auto count = platform::ReadStandardInput(block.data(), block.size());
      if (!count) return std::nullopt;
      if (*count == 0) return bytes;
      bytes.append(block.data(), *count);
    }
  }
  platform::File file;
  if (!file.Open(FromUtf8(listing), platform::OpenMode::kRead)) return std::nullopt;
  for (;;) {
    const std::size_t count = file.Read(block.data(), block.size());
    if (count == 0) return file.ReadFailed() ? std::nullopt : std::optional(bytes);
    bytes.append(block.data(), count);
  }
}

std::optional<std::string> AddListed(const std::string& listing, Files& files) {
  const auto bytes = BytesOf(listing);
  if (!bytes) return "--files0-from: " + Quoted(listing) + " cannot be read";
  std::size_t first = 0;
  while (first < bytes->size()) {
    // The last name may lack its end.
    const std::size_t end = std::min(bytes->find('\0', first), bytes->size());
    if (end == first) return "--files0-from: " + Quoted(listing) + " has an empty name";
    files.push_back(bytes->substr(first, end - first));
    first = end + 1;
  }
  return std::nullopt;
}

}  // namespace

// The last star takes as much as is needed; whatever an earlier one took stays.
bool FitsPattern(const std::string& nameInUtf8, const std::string& patternInUtf8) {
  const WideString name = ToLowerAscii(FromUtf8(nameInUtf8));
  const WideString pattern = ToLowerAscii(FromUtf8(patternInUtf8));
  std::size_t at = 0;
  std::size_t next = 0;
  std::size_t star = WideString::npos;
  std::size_t taken = 0;
  while (at < name.size()) {
    if (next < pattern.size() && pattern[next] == u'*') {
      star = next++;
      taken = at;
    } else if (next < pattern.size() && (pattern[next] == u'?' || pattern[next] == name[at])) {
      ++next;
      ++at;
    } else if (star != WideString::npos) {
      next = star + 1;
      at = ++taken;
    } else {
      return false;
    }
  }
  while (next < pattern.size() && pattern[next] == u'*') ++next;
  return next == pattern.size();
}

Found FindPatterns(const std::vector<std::string>& words) {
  Files files;
  for (const std::string& word : words) {
    const std::size_t separator = word.find_last_of(kSeparators);
    const std::size_t first = separator == std::string::npos ? 0 : separator + 1;
    const std::string pattern = word.substr(first);
    if (pattern.find_first_of("*?") == std::string::npos) {
      files.push_back(word);
      continue;
    }
    const auto fits = [&](const std::string& name) { return FitsPattern(name, pattern); };
    auto trouble = AddFrom(word.substr(0, first), word, fits, "no file fits", files);
    if (trouble) return std::move(*trouble);
  }
  return files;
}

Found FindFiles(const TypedFiles& typed) {
  Found found = kExpandsPatterns ? FindPatterns(typed.words) : Found(typed.words);
  if (std::holds_alternative<std::string>(found)) return found;
  Files files;
  for (std::string& word : std::get<Files>(found)) {
    if (word == "-" || !platform::IsFolder(FromUtf8(word))) {
      files.push_back(std::move(word));
      continue;
    }
    const bool isOpen = word.find_last_of(kSeparators) != word.size() - 1;
    const std::string folder = isOpen ? word + "/" : word;
    if (auto trouble = AddFrom(folder, word, IsModel, "no model lies in this folder", files)) {
      return std::move(*trouble);
    }
  }
  if (typed.listing) {
    if (auto trouble = AddListed(*typed.listing, files)) return std::move(*trouble);
  }
  return files;
}

}  // namespace corvel::host
