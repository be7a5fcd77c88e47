// A model as a member of a run.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "merge/compare_units.h"
#include "merge/document.h"

namespace corvel {

// The document, and what a run knows of it besides. CheckUnits measures it by the first model of
// the run.
struct RunModel {
  RunModel(std::unique_ptr<IfcDocument> opened, std::uint64_t project)
      : document(std::move(opened)), hostProject(project) {}

  std::unique_ptr<IfcDocument> document;  // never null
  std::uint64_t hostProject;              // handle of the host's project that the file belongs to
  bool unitsValid = false;                // its units are those of the first, or are let pass
  bool schemaValid = false;               // its schema identifier is that of the first
  bool mergeable = false;                 // both: it takes part
  // By conversion, or since they were equal before one: there is nothing to be compared any more.
  bool unitsAgree = false;
  // At most one for each of comparedUnitTypes, in their order; where units are converted one for
  // each in which a value could not be.
  std::vector<UnitComparison> unitDifferences;
};

}  // namespace corvel
