// A report for people.
#pragma once

#include <string>
#include <string_view>

#include "merge/report/run_report.h"

namespace corvel {

// One page that needs nothing beside itself, in UTF-8. Everything in it can be read without its
// script, which changes the language, takes inputs out of the drawings and shows what is pointed
// at. `language`: "de"; empty: English, and with the script what the reader's browser asks for.
// `threads`: that may work on it, that of the caller among them.
std::string ReportAsPage(const RunReport& report, std::string_view language, unsigned threads = 1);

}  // namespace corvel
