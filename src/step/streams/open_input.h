// Chooses the input stream by the ending of a path.
#pragma once

#include <cstddef>
#include <memory>

#include "core/reporting.h"
#include "step/streams/input_stream.h"

namespace FileStream {

// A plain model gives a file, and the other forms an entry of an archive. Null when the name is
// that of no model. The stream may have failed to open: ask IsOpen.
std::unique_ptr<InputStream> OpenInput(const corvel::WideString& path, std::size_t bufferSize,
                                       corvel::ErrorReporter showError);

}  // namespace FileStream
