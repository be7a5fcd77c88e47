// A range of numbers that a test can use up.
#pragma once

#include <cstdint>

#include "core/main_container.h"

namespace corvel::test {

// While it lasts, no entity is given a number above `largest`.
class NumbersUpTo {
 public:
  explicit NumbersUpTo(std::uint32_t largest) { IFC::MainContainer::largestNumber = largest; }
  ~NumbersUpTo() { IFC::MainContainer::largestNumber = IFC::kLargestNumber; }
  NumbersUpTo(const NumbersUpTo&) = delete;
  NumbersUpTo& operator=(const NumbersUpTo&) = delete;
};

}  // namespace corvel::test
