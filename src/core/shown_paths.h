// Files that stand for something else, and what people are told in the place of their paths.
#pragma once

#include "core/text.h"

namespace corvel {

// From now on all that this process tells of the file at `path` calls it `name`. The file's own
// name, without its folder, is one that no other file has: it is told as `name` too. Before the
// first thread.
void ShowPathAs(const WideString& path, const WideString& name);

// The text with these names in it, be it for people or JSON. What tells people something calls this
// where the text leaves the program: terminal, log, boxes, and what a report is made of.
WideString WithShownPaths(WideView text);
// The file stands for something else, so that nobody finds it later.
bool IsShownAsAnother(const WideString& path);
// The last part of the path, for texts that a model keeps.
WideString ShownFileName(WideView path);

}  // namespace corvel
