// Which models of a run take part in the merge, and what the user is told about the others.
#pragma once

#include <memory>
#include <vector>

#include "core/document.h"
#include "merge/merge_shell.h"

namespace corvel {

// Sets `mergeable` of every document: it holds for the first, and for those behind it with the same
// schema identifier. The others are named in one report. Gives the number that take part; 0 with
// fewer than two documents.
int CheckDocuments(const std::vector<std::unique_ptr<IfcDocument>>& documents, MergeShell& shell);

}  // namespace corvel
