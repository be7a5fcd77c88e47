#include "merge/report/page_texts.h"

#include <algorithm>
#include <iterator>

#include "core/text.h"
#include "merge/report/json_text.h"
#include "merge/report/page_parts.h"

namespace corvel {

namespace {

const PageLanguage& LanguageOf(std::string_view code) {
  const auto* const found =
      std::find_if(std::begin(kPageLanguages), std::end(kPageLanguages),
                   [code](const PageLanguage& language) { return language.code == code; });
  return found == std::end(kPageLanguages) ? kPageLanguages[0] : *found;
}

}  // namespace

PageTexts::PageTexts(std::string_view language)
    : language_(LanguageOf(language).code), texts_(Parse(LanguageOf(language).texts)) {}

// "key = text"; comments and empty lines have no " = " in front of any text.
PageTexts::Texts PageTexts::Parse(std::string_view lines) {
  constexpr std::string_view kBetween = " = ";
  Texts texts;
  while (!lines.empty()) {
    const std::size_t end = std::min(lines.find('\n'), lines.size());
    std::string_view line = lines.substr(0, end);
    lines.remove_prefix(std::min(end + 1, lines.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    const std::size_t at = line.find(kBetween);
    if (line.starts_with('#') || at == std::string_view::npos) continue;
    texts.emplace(line.substr(0, at), line.substr(at + kBetween.size()));
  }
  return texts;
}

std::string_view PageTexts::Of(std::string_view key) const {
  const auto found = texts_.find(key);
  return found == texts_.end() ? key : found->second;
}

std::string PageTexts::AllAsJson() {
  JsonText json;
  json.BeginObject();
  for (const PageLanguage& language : kPageLanguages) {
    const Texts texts = Parse(language.texts);
    json.NewLine();
    json.Key(language.code).BeginObject();
    json.Member("name", FromUtf8(texts.at("name")));
    json.Key("texts").BeginObject();
    for (const auto& [key, text] : texts) json.Member(key, FromUtf8(text));
    json.EndObject();
    json.EndObject();
  }
  json.EndObject();
  return json.Take();
}

}  // namespace corvel
