// Text for people: safe to show on a terminal, and of a known width there.
#pragma once

#include <cstddef>
#include <vector>

#include "core/text.h"

namespace corvel::host {

// The text without control characters and marks of direction, which a model or a file name may hold
// and a terminal would obey: each becomes "?". Line feeds and tabs stay where `keepLines` is set.
WideString Printable(WideView text, bool keepLines = false);

// Columns that a terminal takes to show the text: 2 for the wide letters of East Asia and pictures,
// 0 for accents that combine with the letter before.
std::size_t ColumnsOf(WideView text);

// The printable text cut or filled up with blanks to exactly `columns`. A cut is marked by "...",
// and what stays is the end of the text: that is where a path has its name.
WideString FitToColumns(WideView text, std::size_t columns);

// The texts with commas between them.
WideString Listed(const std::vector<WideString>& texts);

}  // namespace corvel::host
