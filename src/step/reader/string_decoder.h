// The text between the quotes of a STEP string.
#pragma once

#include "core/text.h"
#include "step/streams/input_stream.h"

namespace corvel {

// Call behind the opening quote. Appends the decoded text to `text` and takes the closing quote;
// the end of the input ends the string too.
void DecodeString(FileStream::InputStream& stream, WideString& text);

}  // namespace corvel
