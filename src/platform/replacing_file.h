// A file that takes the place of another one, or of none, in one step.
#pragma once

#include <cstdint>
#include <string>

#include "platform/file.h"

namespace platform {

// The new file stands in the folder of its target under a name of its own (see part_name.h) until
// it is complete. Up to that moment what stands at the target stays as it is, whatever happens:
// failures, signals, the end of the process by force, another process with the same target.
//
// As long as the new file has its owner it is locked. What a process has left that was ended by
// force is not, and goes when a file for the same target is begun the next time. Where the file
// system has no locks nothing is taken away.
//
// Other names of the target (hard links) keep the old content. On POSIX systems the new file gets
// the mode, the group and the owner of what it replaces as far as this process may set them, and
// never lets in more users than that; on Windows the attributes and the access rules.
class ReplacingFile {
 public:
  ReplacingFile() = default;
  // As Discard.
  ~ReplacingFile();
  ReplacingFile(const ReplacingFile&) = delete;
  ReplacingFile& operator=(const ReplacingFile&) = delete;

  // Makes the new file, empty. False, and nothing is left, when `target` is no name for a file,
  // when something stands there that is no ordinary file, may not be written or may not be
  // replaced, and when no file can be made in its folder. Links are not followed.
  bool Begin(const std::u16string& target);
  // The new file for the one who writes it, opened for writing. Once after Begin.
  File TakeFile();
  // Puts the new file into the place of its target, which takes up to a second when another program
  // has the target open. Everything must have been written, handed to the disk, and closed. False:
  // the target is what it was, and the new file is still there.
  bool Place();
  // Instead of Place or after it has failed: the new file stays beside its target, under a name
  // that says so and that no later run takes away. Gives its path.
  std::u16string Keep();
  // Removes the new file, if there is one. Whoever writes it has closed it.
  void Discard();

 private:
  bool MakePart(std::u16string_view stem);
  void RemoveLeftOvers(std::u16string_view stem) const;
  void Forget();

  std::u16string folder_;  // with the separator at its end; may be empty
  std::u16string name_;    // of the target
  std::u16string part_;    // path of the new file; empty: there is none
  std::intptr_t lock_ = -1;
};

}  // namespace platform
