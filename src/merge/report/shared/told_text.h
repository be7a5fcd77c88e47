// What was told while a run went on.
#pragma once

#include "core/text.h"

namespace corvel {

struct ToldText {
  WideString text;    // as the log has it
  WideString file{};  // the path of the file that was at work; empty when none was, or the text
                      // stands for itself
};

}  // namespace corvel
