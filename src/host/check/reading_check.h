// What the reading of a file had to carry, to mend or to pass over.
#pragma once

#include "host/check/findings.h"
#include "merge/document.h"

namespace corvel::host {

// `document` has been read with tolerance.
void CheckReading(const IfcDocument& document, Findings& findings);

}  // namespace corvel::host
