// Which models of a run take part in the merge, by schema and units. No model is rescaled here: one
// that takes part with other units keeps its numbers.
#pragma once

#include <vector>

#include "merge/merge_shell.h"
#include "merge/run_model.h"

namespace corvel {

// Measures every later model by the first: sets unitsValid, schemaValid, mergeable and
// unitDifferences of each. Another prefix (millimetres for metres) is let pass by the option
// ignoreUnits, another unit never is. Models whose units have been converted come with an answer,
// and are not measured. What is left out is told in one report. Changes no entity.
// Gives the number of models that take part, the first included; 0 with fewer than two. All models
// have been read.
int CheckUnits(std::vector<RunModel>& models, MergeShell& shell);

// Deletes the units in which `model` differs, up to the first that is no length in kilometres,
// metres, centimetres or millimetres; false when there is such a one. Nothing is left of it later:
// marks are taken away again before objects are marked, so that the units are written after all.
bool AdjustUnit(const RunModel& model);

}  // namespace corvel
