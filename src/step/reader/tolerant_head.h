// What stands before the records of a spoilt file.
#pragma once

#include <memory>
#include <string>

#include "step/reader/scanner.h"
#include "step/reader/token.h"

namespace corvel {

struct TolerantHead {
  std::string isoLine;                  // "ISO-10303-21" also where the file has none
  std::unique_ptr<HeaderToken> header;  // never null
  std::string text;                     // a good head that reads to the same
  bool isMended = false;                // it did not read as it stands
  std::string flaw;                     // why, where that can be said: "no FILE_NAME"
};

// Takes everything up to the word DATA or the first record. What of the HEADER section can be found
// by the names of its records is in the token, and the rest of it is empty.
TolerantHead TakeTolerantHead(Scanner& scanner);

}  // namespace corvel
