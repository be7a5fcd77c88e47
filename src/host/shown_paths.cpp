#include "host/shown_paths.h"

#include <utility>
#include <vector>

namespace corvel::host {

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

void ShowPathAs(const WideString& path, const WideString& name) {
  WideString inJson = path;
  Replace(inJson, u"\\", u"\\\\");
  if (inJson != path) Names().emplace_back(inJson, name);
  Names().emplace_back(path, name);
}

WideString WithShownPaths(WideView text) {
  WideString shown(text);
  for (const auto& [path, name] : Names()) Replace(shown, path, name);
  return shown;
}

}  // namespace corvel::host
