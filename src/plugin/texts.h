// The texts that the user reads, looked up in the viewer by their keys.
#pragma once

#include "core/text.h"

namespace corvel::plugin {

// Loads the language file of the viewer's language from `dataFolder` (which ends in a separator),
// or the English one if there is none.
void LoadTexts(const WideString& dataFolder);

// The text of a key, as a copy; empty when the viewer has no texts to give. What stands for an
// unknown key is the viewer's affair.
WideString GetText(const char* key);

}  // namespace corvel::plugin
