// Finds records in text that is not read as records.
#pragma once

#include <cstdint>
#include <string_view>

namespace corvel {

// Counts the places where a record seems to begin: `#12 =` at the start of a line, and in most text
// behind a ";", blanks before the "#" and the "=" allowed. Takes the text in pieces of any size.
class RecordLines {
 public:
  // Between records, one may stand at the start of the text. A comment may well hold a record that
  // somebody took out; only whole lines of them look like an accident.
  enum class Text { kBetweenRecords, kInsideRecord, kComment };

  explicit RecordLines(Text text = Text::kBetweenRecords)
      : text_(text), seen_(text == Text::kBetweenRecords ? Seen::kNothing : Seen::kOther) {}

  void Take(char byte);
  void Take(std::string_view bytes) {
    for (const char byte : bytes) Take(byte);
  }
  std::uint32_t Count() const { return count_; }

 private:
  enum class Seen { kNothing, kHash, kDigits, kBlankBehindDigits, kOther };

  Seen AfterOrdinary(char byte) const;

  Text text_;
  Seen seen_;
  std::uint32_t count_ = 0;
};

inline std::uint32_t RecordsIn(std::string_view text) {
  RecordLines lines;
  lines.Take(text);
  return lines.Count();
}

}  // namespace corvel
