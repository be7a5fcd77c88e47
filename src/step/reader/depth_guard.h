// How deep values may stand in one another.
#pragma once

#include <stdexcept>

#include "step/reader/parser.h"

namespace corvel {

// A value inside a value inside a value: each level is a call of a reader, which takes stack.
class DepthGuard {
 public:
  explicit DepthGuard(Parser& parser) : parser_(parser) {
    if (parser_.valueDepth == kDeepestValue) {
      parser_.RaiseMisfit();
      throw std::runtime_error("Values are nested too deeply");
    }
    ++parser_.valueDepth;
  }
  ~DepthGuard() { --parser_.valueDepth; }
  DepthGuard(const DepthGuard&) = delete;
  DepthGuard& operator=(const DepthGuard&) = delete;

 private:
  static constexpr unsigned kDeepestValue = 1000;

  Parser& parser_;
};

}  // namespace corvel
