// The text between the quotes of a STEP string.
#pragma once

#include <string_view>

#include "core/text.h"
#include "step/reader/decoded_text.h"
#include "step/streams/input_stream.h"

namespace corvel {

// Call behind the opening quote. Appends the decoded text to `text` and takes the closing quote;
// the end of the input ends the string too, and then the answer is false. Directives that mean
// nothing are no failure: they are dropped, or stand as text.
bool DecodeString(FileStream::InputStream& stream, WideString& text);
bool DecodeString(FileStream::InputStream& stream, DecodedText& text);
// The same for nobody who wants the text. Throws away what the stream keeps of the statement.
bool SkipString(FileStream::InputStream& stream);

// The first byte of [`at`, `end`) that is a quote, a "\\" or no ASCII; `end` when there is none.
const char* EndOfPlainText(const char* at, const char* end);

}  // namespace corvel
