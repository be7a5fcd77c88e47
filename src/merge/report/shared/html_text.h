// HTML as it is written.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "core/text.h"
#include "merge/report/shared/byte_text.h"
#include "merge/report/shared/page_texts.h"

namespace corvel {

// Nothing that comes in through Text or Name can be anything but text, also within the quotes of
// an attribute.
class HtmlText {
 public:
  // Borrowed.
  explicit HtmlText(const PageTexts& texts) : texts_(texts) {}

  HtmlText& Raw(std::string_view html) {
    html_.Append(html);
    return *this;
  }
  HtmlText& Text(WideView text);
  HtmlText& Text(std::string_view utf8);
  // A name of a model, which may be written from right to left: it moves nothing around it.
  HtmlText& Name(WideView text);
  // A text of the page in an element, so that the page can change its language.
  HtmlText& Word(std::string_view element, std::string_view key, std::string_view attributes = {});
  HtmlText& Word(std::string_view key) { return Word("span", key); }
  // A colon and a blank, as behind a word of the page.
  HtmlText& Colon() { return Word("colon").Raw(" "); }
  // 1234567
  HtmlText& Whole(std::size_t number);
  // 1,234,567, as the language writes it.
  HtmlText& Count(std::size_t count);
  // With so many digits behind the point, whatever the language: for coordinates and styles.
  HtmlText& Number(double value, int digits);
  // The same of a number that is rounded already, to one digit: 123 is 12.3.
  HtmlText& Tenths(std::int32_t tenths);

  // The same as the language writes it.
  HtmlText& Decimal(double value, int digits, std::string_view element = "span");
  // Likewise "-1234.5". Where languages differ it stands in an element, so that the page can
  // change its language: not for attributes.
  HtmlText& Plain(std::string_view number, std::string_view element = "span");

  // So many bytes more are to come.
  void Expect(std::size_t bytes) { html_.Expect(bytes); }

  std::size_t Size() const { return html_.Size(); }
  // What was put between these two sizes, once more.
  HtmlText& Again(std::size_t begin, std::size_t end) {
    html_.AppendAgain(begin, end);
    return *this;
  }

  const PageTexts& Texts() const { return texts_; }
  // The texts of the page that have been put.
  const KeysOfTexts& Named() const { return named_; }
  std::string Take() { return html_.Take(); }

 private:
  const PageTexts& texts_;
  ByteText html_;
  KeysOfTexts named_;
};

// Of a coordinate, for Tenths. 0 where there is none.
std::int32_t InTenths(double value);
// In the fewest digits that mean the number, and without an exponent unless it is very large or
// very small: "1000000.5", for Plain.
std::string FewestDigits(double value);
// The last part of the path.
WideString ShortName(const WideString& path);
// " i3": the colour of an input.
std::string ColourOf(std::size_t input);

}  // namespace corvel
