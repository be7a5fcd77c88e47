// How an object got from one place to another.
#pragma once

#include <string>

#include "host/diff/changes.h"

namespace corvel::host::diff {

// Places in metres.
Movement MovementBetween(const Transform& before, const Transform& after);

bool IsTurned(const Movement& movement);
// The same for all that moved together.
std::string KeyOf(const Movement& movement);

// "moved by 0.5 m (0.3, 0.4, 0)", "turned by 90 degrees about (0, 0, 1)", or both.
std::string TextOfMovement(const Movement& movement);
// Of all that moved together: where they are turned, each has another way.
std::string TextOfCommonMovement(const Movement& movement);
// "(0.3, 0.4, 0)", rounded to the thousandth of a millimetre.
std::string TextOfPoint(const Triple& point);

}  // namespace corvel::host::diff
