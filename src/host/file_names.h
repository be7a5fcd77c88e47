// Which files are meant by what was typed.
#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace corvel::host {

struct TypedFiles {
  std::vector<std::string> words;      // as they were typed, UTF-8
  std::optional<std::string> listing;  // --files0-from: a file with names, each ended by a NUL
};

// The files, or a message that tells what is wrong. A folder means all models (.ifc, .ifczip) in
// it, by name. Where the shell leaves patterns to programs (on Windows) "*" and "?" in the last
// part of a word mean all files that fit, by name. Behind these come the files of the list; "-" as
// a list is standard input. Every other word is the name of a file, whether it is there or not.
std::variant<std::vector<std::string>, std::string> FindFiles(const TypedFiles& typed);

// Whether a name fits a pattern of "*" and "?", whatever the case of letters A to Z. Both in UTF-8;
// a "?" is one unit of UTF-16, as the system of the patterns counts.
bool FitsPattern(const std::string& nameInUtf8, const std::string& patternInUtf8);

// Puts files in the place of each pattern in `words`; of the rest nothing changes. For every
// system, so that tests can ask for it. The message tells of one that nothing fits.
std::variant<std::vector<std::string>, std::string> FindPatterns(
    const std::vector<std::string>& words);

}  // namespace corvel::host
