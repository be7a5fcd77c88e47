// Runs over the arguments of a record without making tokens of them.
#pragma once

#include "step/streams/input_stream.h"

namespace corvel::host {

// Moves to the ";" that ends the record at hand, past strings and comments; the next byte of the
// stream is then the ";". False when the input ends before. Call with no token looked ahead.
bool SkipToSemicolon(FileStream::InputStream& stream);

}  // namespace corvel::host
