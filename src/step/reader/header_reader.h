// The HEADER section, read by position and not by name.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "step/reader/token.h"

namespace corvel {

class Scanner;

// Reads at most up to ENDSEC; what the section lacks stays empty.
class HeaderReader {
 public:
  explicit HeaderReader(Scanner& scanner) : scanner_(scanner) {}

  // Call with the word HEADER just taken. Takes everything up to and including "ENDSEC;". Never
  // null; the end of the input ends the section too.
  std::unique_ptr<HeaderToken> Read();

 private:
  bool AtEnd();
  const Token& Take();
  void SkipPastOpenBracket();
  WideString ReadHeaderString();
  std::vector<WideString> ReadList();

  Scanner& scanner_;
  std::uint64_t records_ = 0;     // that stand where the section should have ended
  std::int64_t firstRecord_ = 0;  // its offset
  std::int64_t number_ = 0;       // offset of the last #number
  bool behindNumber_ = false;
};

}  // namespace corvel
