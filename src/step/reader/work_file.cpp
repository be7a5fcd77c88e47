#include "step/reader/work_file.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

#include "platform/locked_file.h"

namespace corvel {

namespace {

// More readings than this never share an input; a system that calls everything locked exists.
constexpr std::uint32_t kMostNumbers = 1000;

// The path of the input without its extension. For an entry of a container it is the last part of
// the entry's name, beside the container.
WideString BaseOf(const WideString& inputPath, const FileStream::InputStream& input) {
  WideString base = inputPath;
  if (FileStream::FormOfExtension(input.Extension()) == FileStream::ModelForm::kContained) {
    base = input.ContainerPath();
    base.resize(platform::FindLastSeparator(base) + 1);
    base += platform::FileNameOf(input.EntryName());
  }
  const std::size_t nameStart = platform::FindLastSeparator(base) + 1;
  const std::size_t dot = base.find_last_of(u'.');
  if (dot != WideString::npos && dot >= nameStart) base.resize(dot);
  return base;
}

bool IsReserved(const WideString& candidate, const std::vector<WideString>& reserved) {
  return std::any_of(reserved.begin(), reserved.end(), [&](const WideString& path) {
    return candidate == path || platform::IsSameFile(candidate, path);
  });
}

bool IsBlank(char byte) { return static_cast<unsigned char>(byte) <= ' '; }

// The first bytes of a model; blanks in front of them don't count, nor does a byte order mark.
bool LooksLikeModel(platform::File& file) {
  constexpr std::string_view kMark = "\xEF\xBB\xBF";
  constexpr std::string_view kBegin = "ISO";
  std::array<char, 4096> bytes{};
  std::size_t size = file.Read(bytes.data(), bytes.size());
  const char* at = bytes.data();
  if (std::string_view(at, size).starts_with(kMark)) at += kMark.size();
  std::size_t matched = 0;
  while (size != 0) {
    for (const char* const end = bytes.data() + size; at != end; ++at) {
      if (matched == 0 && IsBlank(*at)) continue;
      if (*at != kBegin[matched]) return false;
      if (++matched == kBegin.size()) return true;
    }
    size = file.Read(bytes.data(), bytes.size());
    at = bytes.data();
  }
  return false;
}

bool ModelStandsAt(const WideString& path) {
  platform::File file;
  return platform::IsOrdinaryFile(path) && file.Open(path, platform::OpenMode::kRead) &&
         LooksLikeModel(file);
}

// True when the search is over, with the file or without one. A model is looked for twice: one that
// may not be written is passed over too, and one may have come before the file was locked.
bool Settle(const WideString& candidate, const WorkFileRules& rules, platform::File& file) {
  if (IsReserved(candidate, rules.reserved) || ModelStandsAt(candidate)) return false;
  const platform::Claim claim = platform::ClaimFile(candidate, file);
  if (claim == platform::Claim::kLocked) return false;
  if (claim == platform::Claim::kRefused) return true;
  if (LooksLikeModel(file)) {
    file.Close();
    return false;
  }
  if (!file.Empty()) file.Close();
  return true;
}

WorkFile OpenBeside(const WideString& base, const WorkFileRules& rules) {
  WorkFile opened;
  opened.path = base + u"_TEMP.ifc";
  for (std::uint32_t number = 2; !Settle(opened.path, rules, opened.file); ++number) {
    if (number > kMostNumbers) break;
    opened.path = base + u"_TEMP" + ToWide(number) + FileStream::kPlainEnding;
  }
  return opened;
}

}  // namespace

WorkFile OpenWorkFile(const WideString& inputPath, const FileStream::InputStream& input,
                      const WorkFileRules& rules) {
  if (!rules.folder) return OpenBeside(BaseOf(inputPath, input), rules);
  WorkFile opened;
  opened.path = *rules.folder;
  opened.hasName = false;
  platform::OpenUnnamedFile(opened.path, opened.file);
  return opened;
}

}  // namespace corvel
