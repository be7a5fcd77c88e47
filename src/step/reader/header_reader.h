// The HEADER section, read by position and not by name.
#pragma once

#include <memory>
#include <vector>

#include "step/reader/token.h"

namespace corvel {

class Scanner;

// Reads at most up to ENDSEC; what the section lacks stays empty.
class HeaderReader {
 public:
  explicit HeaderReader(Scanner& scanner) : scanner_(scanner) {}

  // Call with the word HEADER just taken. Takes everything up to and including "ENDSEC;".
  std::unique_ptr<HeaderToken> Read();

 private:
  bool AtEnd();
  void SkipPastOpenBracket();
  WideString ReadHeaderString();
  std::vector<WideString> ReadList();

  Scanner& scanner_;
};

}  // namespace corvel
