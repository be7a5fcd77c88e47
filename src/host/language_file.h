// The texts that users read, from a file of one language.
//
// The file is UTF-8, one `key = text` per line:
//
//   # Lines that begin with # and empty lines do not count.
//   btn_merge = Merge
//   unable_to_continue = "This file could not be read completely:\n"
//
// - A key is made of letters, digits, "_", "." and "-". Everything behind the first "=" is the
// text.
// - Blanks, tabs and the line's end around key and text do not belong to them. A text that is to
//   keep the blanks at its ends stands in double quotes; so does the empty text. No-break spaces
//   are no blanks in this sense.
// - \n is a line feed, \\ a backslash and \" a quotation mark, within quotes and without. Within
//   quotes a quotation mark needs the backslash, otherwise only at the start of the text.
// - Lines end with LF or CR LF. A byte order mark at the start is passed over.
//
// A line that breaks a rule is skipped and named among the problems; the other lines count.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "core/text.h"

namespace corvel::host {

class LanguageFile {
 public:
  // A file above this many bytes is taken for something else and is not read.
  static constexpr std::size_t kLargestFile = std::size_t{4} << 20;

  // Reads the file at `path`, in the place of what an earlier call has read. False when it cannot
  // be opened, read to its end, or is larger than kLargestFile; then nothing has changed. Malformed
  // lines do not make a reading fail.
  bool Load(const WideString& path);

  // The same with the content of a file. `name` stands for the path among the problems.
  void Parse(std::string_view bytes, const WideString& name);

  // The text of a key; null without one. It stays valid until the next Load.
  const WideString* Find(std::string_view key) const;

  // Number of keys that have a text.
  std::size_t Size() const { return texts_.size(); }

  // What was wrong with the file read last, in the order of its lines: the path, ", line N: " and
  // the reason. Of several texts of one key the first one counts, and the others are problems.
  const std::vector<WideString>& Problems() const { return problems_; }

 private:
  std::map<std::string, WideString, std::less<>> texts_;
  std::vector<WideString> problems_;
};

}  // namespace corvel::host
