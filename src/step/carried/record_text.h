// One record as text, cut into its arguments.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace corvel {

// Views into the record. `name`, the arguments in brackets and what stands between them are all
// that the writer needs to put the record together again.
struct RecordText {
  // As it stands, underscores included; what stands for the whole record where it has no bracket.
  std::string_view name;
  bool hasBrackets = false;
  // Without the blanks and comments around them.
  std::vector<std::string_view> arguments;
  // Before the first argument, between each two (the comma is in it), and behind the last: one
  // more than there are arguments.
  std::vector<std::string_view> glue;

  // Only commas between the arguments.
  bool IsPlain() const;
};

// `text`: `#12=IFCWALL('x',$);`, with anything blank before it and anything behind it; brackets
// that nothing closes end with it.
RecordText CutRecord(std::string_view text);

// The arguments in `text`, which begins behind an opening bracket.
RecordText CutArguments(std::string_view text);

// The byte behind the string, comment or other single byte that begins at `at`, which lies in
// `text`.
std::size_t BehindPiece(std::string_view text, std::size_t at);

}  // namespace corvel
