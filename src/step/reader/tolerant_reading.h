// What a tolerant reading needs besides what a strict one has.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "step/reader/record_mender.h"
#include "step/reader/tolerant_borders.h"

namespace corvel {

struct TolerantReading {
  // Borrows both.
  TolerantReading(Tolerance& tolerance, SkippedInput& skipped)
      : mender(tolerance), borders(skipped, mender) {}

  // A record that waits for a free number: which are free is known at the end of the file.
  struct PutAside {
    std::string text;  // behind the "="
    std::string className;
    std::uint32_t number = 0;  // which another record has; 0: none
    std::int64_t offset = -1;
  };

  // Whether the number is above all before: no earlier record has it then. Most files count
  // upwards.
  bool CountsUp(std::uint32_t next) {
    if (next <= highest) return false;
    highest = next;
    return true;
  }
  // Before the "=" of a record; `textSize` is what its statement text has up to there.
  void Enter(std::uint32_t recordNumber, std::size_t textSize) {
    number = recordNumber;
    start = textSize;
    isMended = false;
  }

  RecordMender mender;
  TolerantBorders borders;
  std::vector<PutAside> putAside;

  std::uint32_t highest = 0;  // of the numbers so far

  // Of the record at hand.
  std::uint32_t number = 0;
  std::size_t start = 0;  // in the statement text, behind the number
  std::size_t size = 0;   // in bytes, once it has been mended
  bool isMended = false;
  bool isChanged = false;    // once it has been mended: it is not what it was
  bool isOfFile = true;      // it stands at `offset`
  std::int64_t offset = -1;  // of the byte behind the number
};

}  // namespace corvel
