#include "merge/report/shared/page_texts.h"

#include <algorithm>
#include <iterator>

#include "core/text.h"
#include "merge/report/shared/json_text.h"
#include "merge/report/shared/page_parts.h"

namespace corvel {

namespace {

// How a language writes numbers.
struct NumberMarks {
  std::string_view language;
  std::string_view decimal;
  std::string_view group;  // between thousands
  std::size_t groupFrom;   // so many digits in front of the fraction
};

constexpr NumberMarks kNumberMarks[] = {{"en", ".", ",", 4},
                                        {"de", ",", ".", 4},
                                        {"fr", ",", "\u202F", 4},
                                        {"es", ",", ".", 5},
                                        {"pl", ",", "\u00A0", 5}};

const NumberMarks& NumberMarksOf(std::string_view code) {
  const auto* const found =
      std::find_if(std::begin(kNumberMarks), std::end(kNumberMarks),
                   [code](const NumberMarks& marks) { return marks.language == code; });
  return found == std::end(kNumberMarks) ? kNumberMarks[0] : *found;
}

constexpr std::string_view kKeyOfFrame = "language";

const PageLanguage& LanguageOf(std::string_view code) {
  const auto* const found =
      std::find_if(std::begin(kPageLanguages), std::end(kPageLanguages),
                   [code](const PageLanguage& language) { return language.code == code; });
  return found == std::end(kPageLanguages) ? kPageLanguages[0] : *found;
}

}  // namespace

PageTexts::PageTexts(std::string_view language, std::span<const PageLanguage> more)
    : more_(more), language_(LanguageOf(language).code), texts_(TextsOf(LanguageOf(language))) {}

PageTexts::Texts PageTexts::TextsOf(const PageLanguage& language) const {
  Texts texts;
  Parse(language.texts, texts);
  for (const PageLanguage& one : more_) {
    if (one.code == language.code) Parse(one.texts, texts);
  }
  return texts;
}

// "key = text"; comments and empty lines have no " = " in front of any text.
void PageTexts::Parse(std::string_view lines, Texts& texts) {
  constexpr std::string_view kBetween = " = ";
  while (!lines.empty()) {
    const std::size_t end = std::min(lines.find('\n'), lines.size());
    std::string_view line = lines.substr(0, end);
    lines.remove_prefix(std::min(end + 1, lines.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    const std::size_t at = line.find(kBetween);
    if (line.starts_with('#') || at == std::string_view::npos) continue;
    texts.emplace(line.substr(0, at), line.substr(at + kBetween.size()));
  }
}

std::string_view PageTexts::Of(std::string_view key) const {
  const auto found = texts_.find(key);
  return found == texts_.end() ? key : found->second;
}

std::string PageTexts::Number(std::string_view plain) const {
  constexpr std::size_t kGroup = 3;
  const NumberMarks& marks = NumberMarksOf(language_);
  std::string text;
  if (plain.starts_with('-')) {
    text += '-';
    plain.remove_prefix(1);
  }
  const std::size_t whole = std::min(plain.find('.'), plain.size());
  for (std::size_t i = 0; i < whole; ++i) {
    if (i != 0 && whole >= marks.groupFrom && (whole - i) % kGroup == 0) text += marks.group;
    text += plain[i];
  }
  if (whole == plain.size()) return text;
  return text.append(marks.decimal).append(plain.substr(whole + 1));
}

std::string PageTexts::AllAsJson(const KeysOfTexts& keys) const {
  JsonText json;
  json.BeginObject();
  for (const PageLanguage& language : kPageLanguages) {
    const Texts texts = TextsOf(language);
    json.NewLine();
    json.Key(language.code).BeginObject();
    json.Member("name", FromUtf8(texts.at("name")));
    const NumberMarks& marks = NumberMarksOf(language.code);
    json.Member("decimal", FromUtf8(marks.decimal));
    json.Member("group", FromUtf8(marks.group));
    json.Member("groupFrom", marks.groupFrom);
    json.Key("texts").BeginObject();
    for (const auto& [key, text] : texts) {
      if (key == kKeyOfFrame || keys.contains(key)) json.Member(key, FromUtf8(text));
    }
    json.EndObject();
    json.EndObject();
  }
  json.EndObject();
  return json.Take();
}

}  // namespace corvel
