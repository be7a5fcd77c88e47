// What scanners and streams report while the program looks into a file.
#pragma once

#include <vector>

#include "core/text.h"

namespace corvel::host {

// The reporter for them, which are given plain functions: what they say goes to the innermost
// Hearing of the thread, without the blanks and line ends behind it, and to nobody without one.
int Hear(const char* key, const WideString& message, int mode);

// Takes what is said while it lives.
class Hearing {
 public:
  // Borrows `messages`.
  explicit Hearing(std::vector<WideString>& messages);
  ~Hearing();
  Hearing(const Hearing&) = delete;
  Hearing& operator=(const Hearing&) = delete;

 private:
  std::vector<WideString>* before_;
};

}  // namespace corvel::host
