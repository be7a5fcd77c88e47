// For sources that may not see the system's headers: some names of the viewer's interface are
// those of system functions.
#pragma once

namespace corvel::test_host {

// Writes down the call of a function whose arguments nobody knows.
void RecordCall(const char* name);

}  // namespace corvel::test_host
