// Where the records of a file begin and end, and what stands between them.
#pragma once

#include <cstdint>

#include "step/reader/scanner.h"
#include "step/reader/skipped_input.h"

namespace corvel {

// The slow half of finding records: the parser takes what is as usual straight from the window and
// comes here with the rest. Nothing that stands in the way ends a reading; it is noted.
class RecordBorders {
 public:
  // Borrows `skipped`.
  explicit RecordBorders(SkippedInput& skipped) : skipped_(skipped) {}

  // Takes the token behind the HEADER section, which should be the word DATA.
  void TakeHead(Scanner& scanner);
  // Takes everything up to and including the number of the next record. False at the end of the
  // input.
  bool FindRecord(Scanner& scanner, std::uint32_t& number);
  // Commas stand before the number that has just been taken.
  void NoteCommas(Scanner& scanner);
  // Takes everything up to and including the ";" of the record whose arguments have been read.
  void FinishRecord(Scanner& scanner);

 private:
  // Tokens in one go that belong to no record.
  struct Run {
    std::int64_t offset = -1;  // of its first byte; negative: there is none
    std::uint64_t records = 0;
    bool behindEqual = false;
    bool hasName = false;  // a class, behind a "="
  };

  void Pass(Scanner& scanner, const Token& token);
  bool IsExpected(const Token& token);
  bool IsUnreadSection(const Token& token) const;
  void AddToRun(const Token& token, std::int64_t offset);
  void EndRun();

  SkippedInput& skipped_;
  Run run_;
  bool inData_ = false;
  bool inDataHead_ = false;  // behind the word DATA, up to its ";"
  bool isClosed_ = false;    // the closing line has been met
};

}  // namespace corvel
