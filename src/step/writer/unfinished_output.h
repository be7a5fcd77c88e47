// Sees to it that an output is there whole or not at all.
#pragma once

#include <string_view>

#include "core/text.h"
#include "platform/file.h"
#include "platform/replacing_file.h"

namespace corvel {

// Where a path leads when the links at its end are followed, whether or not something is there. Of
// links in a circle it is one of them.
WideString FollowLinks(const WideString& path);

// The output at a path while it is written. What stood there before is untouched until Complete.
class UnfinishedOutput {
 public:
  // Touches nothing.
  explicit UnfinishedOutput(const WideString& path);
  // As Discard.
  ~UnfinishedOutput() = default;
  UnfinishedOutput(const UnfinishedOutput&) = delete;
  UnfinishedOutput& operator=(const UnfinishedOutput&) = delete;

  // What the output is to be written to: a file of its own beside the path, or beside what a link
  // there leads to; a device or a pipe itself. Not open when the output cannot be written there.
  // Once.
  platform::File Open();
  // Puts the output, which is written and closed, at the path, where nobody has seen anything of it
  // so far. False: it cannot be put there, and stays under another name, which KeptAt tells.
  bool Complete();
  bool IsComplete() const { return complete_; }
  // Empty unless Complete has failed.
  const WideString& KeptAt() const { return keptAt_; }
  // Removes what was written, which is closed; a device stays. Nothing when it is complete.
  void Discard() { file_.Discard(); }

 private:
  WideString target_;
  WideString keptAt_;
  platform::ReplacingFile file_;
  bool isDevice_ = false;
  bool complete_ = false;
};

// Puts the bytes at the path in one step. False: they cannot be written there, and what stood there
// does.
bool WriteInOneStep(const WideString& path, std::string_view bytes);

}  // namespace corvel
