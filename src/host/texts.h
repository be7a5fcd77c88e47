// What users read, by text key. Technical messages in English are literals of the engine and have
// no key.
#pragma once

#include <string_view>

#include "core/text.h"

namespace corvel::host {

// The English text of a key; the key itself when nobody has written a text for it, so that a
// message never loses its subject.
WideString TextOf(std::string_view key);

}  // namespace corvel::host
