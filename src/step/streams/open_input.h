// Chooses the input stream by the ending of a path.
#pragma once

#include <cstddef>
#include <memory>

#include "core/reporting.h"
#include "step/streams/input_stream.h"

namespace FileStream {

// ".ifc" in any case gives a plain file. Null when the ending is not known. The stream may have
// failed to open: ask IsOpen.
std::unique_ptr<InputStream> OpenInput(const corvel::WideString& path, std::size_t bufferSize,
                                       corvel::ErrorReporter showError);

}  // namespace FileStream
