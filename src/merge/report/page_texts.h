// The texts of the report page, in each of its languages.
#pragma once

#include <map>
#include <string>
#include <string_view>

namespace corvel {

class PageTexts {
 public:
  // An unknown language is English.
  explicit PageTexts(std::string_view language);

  std::string_view Language() const { return language_; }
  // In UTF-8; the key itself where there is no such text.
  std::string_view Of(std::string_view key) const;

  // All texts of all languages, for the script of the page: {"en": {"name", "texts": {}}, ...}.
  static std::string AllAsJson();

 private:
  using Texts = std::map<std::string_view, std::string_view>;
  static Texts Parse(std::string_view lines);

  std::string_view language_;
  Texts texts_;
};

}  // namespace corvel
