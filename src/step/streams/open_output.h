// Chooses the output stream by the ending of a path.
#pragma once

#include <memory>

#include "core/reporting.h"
#include "step/streams/outpout_stream.h"

namespace FileStream {

// What stands behind the last dot of `path`, in any case: ".ifc" gives a plain file, ".ifczip" an
// archive. Null, and no file is touched, for anything else. The stream may have failed to open,
// which it has reported: ask IsOpen.
std::unique_ptr<OutpoutStream> OpenOutput(const corvel::WideString& path,
                                          corvel::ErrorReporter showError);

}  // namespace FileStream
