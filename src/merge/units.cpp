#include "merge/units.h"

#include <algorithm>

#include "core/cancellation.h"
#include "core/entity_cast.h"
#include "core/reporting.h"
#include "merge/compare_units.h"
#include "merge/rejected_projects.h"
#include "merge/unit_texts.h"
#include "schema/interfaces/units.h"
#include "step/log/ifc_log.h"

namespace corvel {

namespace {

void Log(WideView text) { IfcLog::Instance().LogText(text); }

// Where error boxes are held back, the report of this check is shown in any case, and
// afterwards the mode is what it was, unless it has been set meanwhile.
class ShowingErrors {
 public:
  ShowingErrors() : before_(mode_) {
    if (before_ == CancelMode::kHoldBackBoxes) mode_ = CancelMode::kAsk;
  }
  ~ShowingErrors() {
    if (mode_ == CancelMode::kAsk) mode_ = before_;
  }
  ShowingErrors(const ShowingErrors&) = delete;
  ShowingErrors& operator=(const ShowingErrors&) = delete;

 private:
  CancelMode& mode_ = Cancellation::OfProcess().mode;
  CancelMode before_;
};

std::vector<UnitComparison> DifferencesThatCount(const std::vector<UnitComparison>& rows) {
  std::vector<UnitComparison> differences;
  for (const WideView type : comparedUnitTypes) {
    const auto row = std::find_if(rows.begin(), rows.end(),
                                  [type](const auto& one) { return one.unitType == type; });
    if (row != rows.end() && !row->same) differences.push_back(*row);
  }
  return differences;
}

bool UnitsPass(const std::vector<UnitComparison>& differences, bool ignoreUnits) {
  if (differences.empty()) return true;
  return ignoreUnits && std::none_of(differences.begin(), differences.end(), [](const auto& row) {
           return row.code == UnitDifference::kOtherName;
         });
}

void MeasureBy(const IfcDocument& first, RunModel& model, bool ignoreUnits) {
  const IfcDocument& document = *model.document;
  model.schemaValid = document.HasSchemaOf(first);
  if (model.unitsAgree || !model.unitDifferences.empty()) {
    model.unitsValid = model.unitsAgree;
    model.mergeable = model.unitsValid && model.schemaValid;
    return;
  }
  model.unitDifferences = DifferencesThatCount(CompareUnitAssignments(
      first.getIfcUnitAssignment(), document.getIfcUnitAssignment(), document.getFilePath()));
  model.unitsValid = UnitsPass(model.unitDifferences, ignoreUnits);
  model.mergeable = model.unitsValid && model.schemaValid;
}

// Texts without dots and commas.
bool IsKnownLength(WideView unitType, WideView prefix) {
  if (unitType != u"LENGTHUNIT") return false;
  return prefix.empty() || prefix == u"KILO" || prefix == u"CENTI" || prefix == u"MILLI";
}

}  // namespace

int CheckUnits(std::vector<RunModel>& models, MergeShell& shell) {
  const ShowingErrors whileItLasts;
  Log(u"Comparing units in files...");
  if (models.size() < 2) {
    Log(u"No files to compare.");
    return 0;
  }
  RunModel& first = models.front();
  Log(u"Check Units for: " + first.document->getFilePath());
  first.unitsValid = first.schemaValid = first.mergeable = true;
  const bool ignoreUnits = shell.Options().ignoreUnits;
  for (std::size_t i = 1; i < models.size(); ++i) {
    Log(u"Check Units for: " + models[i].document->getFilePath());
    MeasureBy(*first.document, models[i], ignoreUnits);
  }
  ReportRejectedProjects(models, shell);
  IfcLog::Instance().Flush();
  Log(u"Done.");
  return static_cast<int>(std::count_if(models.begin(), models.end(),
                                        [](const RunModel& model) { return model.mergeable; }));
}

bool AdjustUnit(const RunModel& model) {
  IFC::MainContainer& container = *model.document->mainContainer;
  for (const UnitComparison& row : model.unitDifferences) {
    IFC::IfcEntity* const entity = container.GetEntityByOrginalNumber(row.otherMarker);
    const auto* const unit = EntityCast<IFC::VIfcSIUnit>(entity);
    if (unit == nullptr) return false;
    if (!IsKnownLength(WithoutDotsAndCommas(UnitTypeText(entity)),
                       WithoutDotsAndCommas(unit->getPrefixText()))) {
      return false;
    }
    entity->marker = IFC::kDeleted;
    container.NoteChangedMarkers();
  }
  return true;
}

}  // namespace corvel
