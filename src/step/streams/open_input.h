// Chooses the input stream by the ending of a path.
#pragma once

#include <cstddef>
#include <memory>

#include "core/reporting.h"
#include "step/streams/input_stream.h"

namespace FileStream {

// In any case of its letters ".ifc" gives a plain file, and ".ifczip" and `container.olf|entry` an
// entry of an archive. Null when the ending is not known. The stream may have failed to open: ask
// IsOpen.
std::unique_ptr<InputStream> OpenInput(const corvel::WideString& path, std::size_t bufferSize,
                                       corvel::ErrorReporter showError);

}  // namespace FileStream
