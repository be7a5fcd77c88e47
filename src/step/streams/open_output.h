// Chooses the output stream by the ending of a path.
#pragma once

#include <memory>

#include "core/reporting.h"
#include "platform/file.h"
#include "step/streams/outpout_stream.h"

namespace FileStream {

// True when a model can be written under the name `path`: ".ifc" or ".ifczip" stands behind its
// last dot, in any case.
bool IsOutputName(const corvel::WideString& path);

// The stream for the output at `path`: a plain file or an archive, as the ending wants it; null for
// another ending (see IsOutputName). Writes to `file`, wherever that lies; names and messages
// follow `path`. With a file that is not open, the stream is not open either, and has reported it:
// ask IsOpen.
std::unique_ptr<OutpoutStream> OpenOutput(const corvel::WideString& path, platform::File file,
                                          corvel::ErrorReporter showError);

}  // namespace FileStream
