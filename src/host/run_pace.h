// How fast a run goes, and when it may be over.
#pragma once

#include <cstdint>
#include <optional>

#include "core/text.h"

namespace corvel::host {

// Guesses from the percents so far: what is left is taken to go as fast.
class RunPace {
 public:
  // The run starts now; `bytes` are to be read.
  explicit RunPace(std::int64_t bytes = 0);

  double Seconds() const;
  // Nothing before there is enough to guess from.
  std::optional<double> SecondsLeft(int percent) const;
  // " (12.3 MB/s, 1:05 left)" for a bar; empty in the first seconds, in which most runs end.
  WideString Text(int percent) const;

 private:
  std::int64_t bytes_;
  std::int64_t began_;
};

}  // namespace corvel::host
