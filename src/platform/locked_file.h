// Files that one run has for itself: locked while they are open, or without a name.
//
// Where something else stands in the place of a file that is to be made (a link, a pipe, a device),
// opening it could write into a foreign file, or wait for ever. Nothing of that kind is opened
// here.
#pragma once

#include <string>

#include "platform/file.h"

namespace platform {

enum class Claim {
  kTaken,   // open, locked where the file system has locks
  kLocked,  // somebody else has it
  kRefused  // no ordinary file, or one that may not be written or made
};

// Opens `path` for reading and writing at its start with its bytes as they are, makes it if it is
// missing, and locks it until it is closed. Others may read it meanwhile. On Windows they can
// neither write nor delete it; on other systems the lock keeps out those who claim it too.
Claim ClaimFile(const std::u16string& path, File& file);

// Removes a claimed file from `path`, and closes it. What stands at `path` in its stead by now
// stays. False when nothing was removed.
bool RemoveClaimedFile(const std::u16string& path, File& file);

// Makes a file for reading and writing in `folder` that nobody else can open and that is gone as
// soon as it is closed, however the process ends. False when the folder does not take it.
bool OpenUnnamedFile(const std::u16string& folder, File& file);

// Where the system wants files of the moment: TMPDIR or /tmp; on Windows TMP, TEMP and what it
// takes without them. Nobody has looked whether it is there.
std::u16string SystemTemporaryFolder();

}  // namespace platform
