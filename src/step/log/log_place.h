// Where a log goes that must not take the place of somebody else's file.
#pragma once

#include <functional>

#include "core/text.h"

namespace corvel {

// For a host that wants a log only where there is something to tell, and at a place of its choice.
struct LogPlace {
  // The file that is wanted; see FreeLogPath.
  WideString path;
  // Gets the path at which no file could be made; the log is then given up. May be empty.
  std::function<void(const WideString& path)> refused;
};

// `wanted`, or the first of its numbered names ("x_IFC_LOG2.txt" for "x_IFC_LOG.txt") at which
// nothing stands or an ordinary file that is a log already: it begins with the line of date and
// time that every log begins with. Links, folders and devices are passed over as other files are.
// Opens each file on the way. Makes none: another process may take the place meanwhile.
WideString FreeLogPath(const WideString& wanted);

// Makes an empty file at a path that FreeLogPath gave, in the place of the log that was there.
// False: the folder refuses it.
bool MakeLogFile(const WideString& path);

}  // namespace corvel
