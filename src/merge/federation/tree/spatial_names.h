// What the names of sites, buildings and storeys are worth.
#pragma once

#include "core/text.h"

namespace corvel {

// The name without its blanks, in small letters (Latin, Greek and Cyrillic ones): what two names
// have in common that somebody takes for one.
WideString ComparableName(WideView name);

// Whether a comparable name is one that programs put in when nobody gives one, or the word for the
// thing itself: "default", "undefined", "storey". The empty name is.
bool IsGenericName(WideView comparable);

}  // namespace corvel
