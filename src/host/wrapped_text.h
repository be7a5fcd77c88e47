// Lines for people that are no longer than a terminal is wide.
#pragma once

#include <cstddef>

#include "core/text.h"

namespace corvel::host {

inline constexpr std::size_t kLineColumns = 80;

// `first`, and the text behind it, made safe to show and broken at its blanks; further lines begin
// with so many blanks as `first` has columns. A word that is longer than a line is cut into pieces.
// Ends with a line feed.
WideString Wrapped(WideView first, WideView text);
// The same with a label of a column of its own: "  label          text".
WideString LabelledLine(WideView label, WideView text);

// "3.100 m", three places behind the point whatever the number; "-" for what is no number.
WideString MetresText(double metres);
// The shortest text that means the number: "0.3048".
WideString NumberText(double number);
// "1 place", "2 places".
WideString Counted(std::uint64_t count, WideView one, WideView several);

}  // namespace corvel::host
