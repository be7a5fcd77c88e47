// Where the records of a spoilt file begin.
#pragma once

#include <cstdint>

#include "step/reader/record_mender.h"
#include "step/reader/skipped_input.h"
#include "step/reader/stream_bytes.h"

namespace corvel {

// What RecordBorders is to a strict reading. Looks at bytes and makes no tokens, so that a stray
// quote or word takes no record along; what stands between records is noted.
class TolerantBorders {
 public:
  // Borrows both.
  TolerantBorders(SkippedInput& skipped, RecordMender& mender)
      : skipped_(skipped), mender_(mender) {}

  // Records have been met on another way: what looks like the name of a section is none.
  void EnterData() { inData_ = true; }

  // The numberless one has no number that can be one.
  enum class Found { kRecord, kNumberlessRecord, kEnd };
  // Moves behind the number of the next record, or, if it has none, before its "=" or class.
  Found FindRecord(Scanner& scanner, std::uint32_t& number);

 private:
  bool FindHere(Scanner& scanner, StreamBytes& bytes);
  bool TakeNumber(StreamBytes& bytes);
  bool TakeWord(Scanner& scanner, StreamBytes& bytes);
  bool TakeClosingLine(Scanner& scanner, StreamBytes& bytes);
  void TakeDataHead(StreamBytes& bytes);
  bool BracketFollows(StreamBytes& bytes);
  void TakeStray(StreamBytes& bytes);

  SkippedInput& skipped_;
  RecordMender& mender_;
  std::uint32_t number_ = 0;  // of what was found; 0: none
  bool isStray_ = false;      // the bytes before the next one
  bool inData_ = false;       // records have been met, or the word DATA
  bool isClosed_ = false;     // the closing line has been met
};

}  // namespace corvel
