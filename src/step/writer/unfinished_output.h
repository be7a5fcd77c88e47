// Sees to it that an output is there whole or not at all.
#pragma once

#include "core/text.h"

namespace corvel {

// Where a path leads when the links at its end are followed, whether or not something is there.
WideString FollowLinks(const WideString& path);

// From its construction until Complete, the output at `path` counts as unfinished: a process that
// is told to end removes it. The writer removes it itself when it fails; what it would leave, the
// file behind a link, goes here.
class UnfinishedOutput {
 public:
  explicit UnfinishedOutput(const WideString& path);
  ~UnfinishedOutput();
  UnfinishedOutput(const UnfinishedOutput&) = delete;
  UnfinishedOutput& operator=(const UnfinishedOutput&) = delete;

  void Complete();

 private:
  WideString path_;
  WideString target_;  // where `path_` leads; empty when that is a device
  bool complete_ = false;
};

}  // namespace corvel
