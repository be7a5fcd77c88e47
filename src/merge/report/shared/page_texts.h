// The texts of a page, in each of its languages.
#pragma once

#include <functional>
#include <map>
#include <set>
#include <span>
#include <string>
#include <string_view>

namespace corvel {

// Lines of "key = text" in UTF-8.
struct PageLanguage {
  std::string_view code;  // "de"
  std::string_view texts;
};

using KeysOfTexts = std::set<std::string, std::less<>>;

class PageTexts {
 public:
  // An unknown language is English. `more`: texts beside those that all pages have, by language;
  // where two have one key the first counts. Borrowed.
  explicit PageTexts(std::string_view language, std::span<const PageLanguage> more = {});

  std::string_view Language() const { return language_; }
  // In UTF-8; the key itself where there is no such text.
  std::string_view Of(std::string_view key) const;

  bool Has(std::string_view key) const { return texts_.count(key) != 0; }
  // "-1234.5" as the language writes it.
  std::string Number(std::string_view plain) const;

  // The texts of these keys, and of the frame, in all languages, for the script of the page: {"en":
  // {"name", "decimal", "group", "groupFrom", "texts": {}}, ...}.
  std::string AllAsJson(const KeysOfTexts& keys) const;

 private:
  using Texts = std::map<std::string_view, std::string_view>;
  static void Parse(std::string_view lines, Texts& texts);
  Texts TextsOf(const PageLanguage& language) const;

  std::span<const PageLanguage> more_;
  std::string_view language_;
  Texts texts_;
};

}  // namespace corvel
