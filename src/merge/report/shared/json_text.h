// JSON as it is written, member by member.
#pragma once

#include <array>
#include <charconv>
#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/text.h"
#include "merge/report/shared/byte_text.h"

namespace corvel {

// Puts the commas; whoever calls sees to it that what is opened is closed. The text is ASCII and
// UTF-8, and stands as it is within a script element of a page: "<", ">", "&" and the two line
// separators of Unicode are escaped. What is no text (bytes of a file that are no characters) is
// U+FFFD.
class JsonText {
 public:
  JsonText& Key(std::string_view key);
  void BeginObject() { Begin('{'); }
  void EndObject() { End('}'); }
  void BeginArray() { Begin('['); }
  void EndArray() { End(']'); }
  // What comes next begins a line.
  void NewLine() { newLine_ = true; }

  void Value(WideView text);
  // Of ASCII alone.
  void Value(std::string_view text);
  void Value(const char* text) { Value(std::string_view(text)); }
  void Value(const std::string& text) { Value(std::string_view(text)); }
  void Value(const WideString& text) { Value(WideView(text)); }
  void Value(const char16_t* text) { Value(WideView(text)); }
  // Of UTF-8; what is none is read as FromUtf8 reads it.
  void Utf8(std::string_view text);
  // Of pointers, which would become one, there is nothing to be told.
  void Value(std::same_as<bool> auto value) { Put(value ? "true" : "false"); }
  // In the fewest digits that read back as the same; null for what is no number.
  void Value(double value);
  // Rounded to so many digits behind the point, six at most.
  void Rounded(double value, int digits);
  template <std::integral Number>
  requires(!std::same_as<Number, bool>) void Value(Number value) {
    std::array<char, 24> digits;
    Put({digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr});
  }
  void Null() { Put("null"); }

  template <class T>
  void Member(std::string_view key, const T& value) {
    Key(key).Value(value);
  }

  // An array, each item of which begins a line.
  template <class Items, class Action>
  void EachOnALine(const Items& items, Action action) {
    BeginArray();
    for (const auto& item : items) {
      NewLine();
      action(item);
    }
    EndArray();
  }
  void Texts(const std::vector<WideString>& texts) {
    BeginArray();
    for (const WideString& text : texts) Value(text);
    EndArray();
  }
  // A whole value that another writer has made. What may not stand in a page is escaped in it.
  void Made(std::string_view json);

  // So many bytes more are to come.
  void Expect(std::size_t bytes) { text_.Expect(bytes); }
  std::string Take() { return text_.Take(); }

 private:
  bool PutPlain(std::string_view text);
  bool PutDecimal(double scaled, int digits);
  void Begin(char bracket) {
    BeforeToken();
    text_.Append(bracket);
  }
  void End(char bracket) {
    needsComma_ = false;
    BeforeToken();
    text_.Append(bracket);
    needsComma_ = true;
  }
  void Put(std::string_view token) {
    BeforeToken();
    text_.Append(token);
    needsComma_ = true;
  }
  void BeforeToken() {
    if (needsComma_) text_.Append(',');
    if (newLine_) text_.Append('\n');
    needsComma_ = newLine_ = false;
  }

  ByteText text_;
  bool needsComma_ = false;
  bool newLine_ = false;
};

}  // namespace corvel
