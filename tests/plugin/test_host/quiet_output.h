// The library prints to the standard output of the process.
#pragma once

namespace corvel::test_host {

// While it lives, standard output goes nowhere.
class QuietOutput {
 public:
  QuietOutput();
  ~QuietOutput();
  QuietOutput(const QuietOutput&) = delete;
  QuietOutput& operator=(const QuietOutput&) = delete;

 private:
  int real_;
};

}  // namespace corvel::test_host
