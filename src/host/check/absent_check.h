// Mandatory numbers and truth values that the file leaves out.
#pragma once

#include "core/main_container.h"
#include "host/check/findings.h"
#include "step/reader/record_notes.h"

namespace corvel::host {

// The objects have 0 (.F., or .U. of a logical) in their place: only the reading knew.
void CheckAbsentNumbers(const RecordNotes& notes, const IFC::MainContainer& container,
                        Findings& findings);

}  // namespace corvel::host
