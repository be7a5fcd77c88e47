#include "core/shown_paths.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "platform/file.h"

namespace corvel {

namespace {

std::vector<std::pair<WideString, WideString>>& Names() {
  static std::vector<std::pair<WideString, WideString>> names;
  return names;
}

void Replace(WideString& text, WideView from, WideView to) {
  for (std::size_t at = text.find(from); at != WideString::npos; at = text.find(from, at)) {
    text.replace(at, from.size(), to);
    at += to.size();
  }
}

}  // namespace

// What is longer comes first, since it holds the others.
void ShowPathAs(const WideString& path, const WideString& name) {
  WideString inJson = path;
  Replace(inJson, u"\\", u"\\\\");
  if (inJson != path) Names().emplace_back(inJson, name);
  Names().emplace_back(path, name);
  Names().emplace_back(platform::FileNameOf(path), name);
}

WideString WithShownPaths(WideView text) {
  WideString shown(text);
  for (const auto& [path, name] : Names()) Replace(shown, path, name);
  return shown;
}

bool IsShownAsAnother(const WideString& path) {
  return std::any_of(Names().begin(), Names().end(),
                     [&](const auto& known) { return known.first == path; });
}

WideString ShownFileName(WideView path) { return WithShownPaths(platform::FileNameOf(path)); }

}  // namespace corvel
