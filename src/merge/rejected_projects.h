// What the user is told about models that don't take part in a merge.
#pragma once

#include <memory>
#include <vector>

#include "merge/merge_shell.h"
#include "merge/run_model.h"

namespace corvel {

// One report: which models have another schema than the first, which are left out for their units
// and which ones, and what is merged all the same. Nothing when all take part. The models have
// been through CheckUnits.
void ReportRejectedProjects(const std::vector<RunModel>& models, MergeShell& shell);

}  // namespace corvel
