// Two bars in the last two lines of a terminal.
#pragma once

#include <functional>
#include <optional>
#include <string_view>

#include "core/text.h"

namespace corvel::host {

// What is to be seen: the whole run above, the step at work below. Percents are 0..100.
struct ProgressView {
  int overall = 0;
  int step = 0;
  WideString overallText;
  WideString stepText;
  bool operator==(const ProgressView&) const = default;
};

// The view as a line for programs, with how long the run has taken and may still take: nothing of
// the latter before it can be told. Without a line end.
WideString ProgressAsJson(const ProgressView& view, double seconds,
                          std::optional<double> secondsLeft);

// `text [#####.....]  50%` in exactly `columns` columns; without the bar where there is no room.
WideString RenderBar(WideView text, int percent, int columns);

// Draws in place. Erase before anything else is written to the terminal; the next Draw brings the
// bars back below it.
class ProgressBars {
 public:
  // `write` puts text on the terminal, `columns` asks for its width.
  ProgressBars(std::function<void(WideView)> write, std::function<int()> columns);
  ~ProgressBars() { Erase(); }
  ProgressBars(const ProgressBars&) = delete;
  ProgressBars& operator=(const ProgressBars&) = delete;

  // Writes nothing when the bars would look the same.
  void Draw(const ProgressView& view);
  // Does nothing when there are no bars.
  void Erase();

 private:
  std::function<void(WideView)> write_;
  std::function<int()> columns_;
  WideString drawn_;  // empty: nothing is on the terminal
};

}  // namespace corvel::host
