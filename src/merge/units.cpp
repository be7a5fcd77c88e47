#include "merge/units.h"

#include <algorithm>

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

// A CancelMode of 1 holds error boxes back. The report of this check is shown in any case, and
// afterwards the mode is what it was, unless it has been set meanwhile.
class ShowingErrors {
 public:
  ShowingErrors() : before_(CancelMode()) {
    if (before_ == kHoldingBack) CancelMode() = kNormal;
  }
  ~ShowingErrors() {
    if (CancelMode() == kNormal) CancelMode() = before_;
  }
  ShowingErrors(const ShowingErrors&) = delete;
  ShowingErrors& operator=(const ShowingErrors&) = delete;

 private:
  static constexpr int kNormal = 0;
  static constexpr int kHoldingBack = 1;

  int before_;
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

void MeasureBy(const IfcDocument& first, IfcDocument& document, bool ignoreUnits) {
  document.unitDifferences = DifferencesThatCount(CompareUnitAssignments(first, document));
  document.unitsValid = UnitsPass(document.unitDifferences, ignoreUnits);
  document.schemaValid = document.KnownSchemaIdentifier() == first.KnownSchemaIdentifier();
  document.mergeable = document.unitsValid && document.schemaValid;
}

// Texts without dots and commas.
bool IsKnownLength(WideView unitType, WideView prefix) {
  if (unitType != u"LENGTHUNIT") return false;
  return prefix.empty() || prefix == u"KILO" || prefix == u"CENTI" || prefix == u"MILLI";
}

}  // namespace

int CheckUnits(const std::vector<std::unique_ptr<IfcDocument>>& documents, MergeShell& shell) {
  const ShowingErrors whileItLasts;
  Log(u"Comparing units in files...");
  if (documents.size() < 2) {
    Log(u"No files to compare.");
    return 0;
  }
  IfcDocument& first = *documents.front();
  Log(u"Check Units for: " + first.getFilePath());
  first.unitsValid = first.schemaValid = first.mergeable = true;
  const bool ignoreUnits = shell.Options().ignoreUnits;
  for (std::size_t i = 1; i < documents.size(); ++i) {
    Log(u"Check Units for: " + documents[i]->getFilePath());
    MeasureBy(first, *documents[i], ignoreUnits);
  }
  ReportRejectedProjects(documents, shell);
  IfcLog::Instance().Flush();
  Log(u"Done.");
  return static_cast<int>(std::count_if(documents.begin(), documents.end(),
                                        [](const auto& document) { return document->mergeable; }));
}

bool AdjustUnit(IfcDocument& document, const IfcDocument& /*first*/) {
  for (const UnitComparison& row : document.unitDifferences) {
    IFC::IfcEntity* const entity =
        document.mainContainer->GetEntityByOrginalNumber(row.otherMarker);
    const auto* const unit = EntityCast<IFC::VIfcSIUnit>(entity);
    if (unit == nullptr) return false;
    if (!IsKnownLength(WithoutDotsAndCommas(UnitTypeText(entity)),
                       WithoutDotsAndCommas(unit->getPrefixText()))) {
      return false;
    }
    entity->marker = IFC::kDeleted;
    document.mainContainer->NoteChangedMarkers();
  }
  return true;
}

}  // namespace corvel
