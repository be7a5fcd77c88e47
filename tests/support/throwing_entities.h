// Objects whose reading or writing goes wrong.
#pragma once

#include <stdexcept>

#include "support/graph.h"

namespace corvel::test {

struct ErrorWithText : std::runtime_error {
  ErrorWithText() : runtime_error("text of it") {}
};
struct ErrorWithoutText : std::runtime_error {
  ErrorWithoutText() : runtime_error("") {}
};
struct LogicErrorWithText : std::logic_error {
  LogicErrorWithText() : logic_error("text of it") {}
};

template <class Exception>
class ThrowingOnRead final : public GraphNode {
 public:
  const char16_t* getClassName() const override { return u"ThrowingOnRead"; }
  void read(Parser& /*parser*/) override { throw Exception(); }
};

template <class Exception>
class ThrowingOnWrite final : public GraphNode {
 public:
  const char16_t* getClassName() const override { return u"ThrowingOnWrite"; }
  void write(StepWriter& /*writer*/) const override { throw Exception(); }
};

}  // namespace corvel::test
