// Finds records in text that is not read as records.
#pragma once

#include <cstdint>
#include <string_view>

namespace corvel {

// Counts the places where a record seems to begin: `#12 =` at the start of a line or behind a ";",
// blanks before the "#" and the "=" allowed. Takes the text in pieces of any size.
class RecordLines {
 public:
  // `textStartsLine`: a record may stand at the start of the text.
  explicit RecordLines(bool textStartsLine = true)
      : seen_(textStartsLine ? Seen::kNothing : Seen::kOther) {}

  void Take(char byte);
  void Take(std::string_view bytes) {
    for (const char byte : bytes) Take(byte);
  }
  std::uint32_t Count() const { return count_; }

 private:
  enum class Seen { kNothing, kHash, kDigits, kBlankBehindDigits, kOther };

  Seen AfterOrdinary(char byte) const;

  Seen seen_;
  std::uint32_t count_ = 0;
};

inline std::uint32_t RecordsIn(std::string_view text) {
  RecordLines lines;
  lines.Take(text);
  return lines.Count();
}

}  // namespace corvel
