// What the user is told about models that don't take part in a merge.
#pragma once

#include <memory>
#include <vector>

#include "core/document.h"
#include "merge/merge_shell.h"

namespace corvel {

// One report: which models have another schema than the first, which are left out for their units
// and which ones, and what is merged all the same. Nothing when all take part. The documents have
// been through CheckUnits.
void ReportRejectedProjects(const std::vector<std::unique_ptr<IfcDocument>>& documents,
                            MergeShell& shell);

}  // namespace corvel
