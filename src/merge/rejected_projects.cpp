#include "merge/rejected_projects.h"

#include <algorithm>
#include <map>

#include "merge/unit_texts.h"
#include "platform/file.h"

namespace corvel {

namespace {

using Models = std::vector<RunModel>;

bool TakesPart(const RunModel& model) { return model.unitsValid && model.schemaValid; }

WideString NameOf(const RunModel& model) {
  return WideString(platform::FileNameOf(model.document->getFilePath()));
}

// "LENGTHUNIT(#12) - MILLIMETRE"
WideString UnitText(const UnitComparison& row, std::uint32_t marker, const WideString& label) {
  return WithoutDotsAndCommas(row.unitType) + u"(#" + ToWide(marker) + u") - " +
         WithoutDotsAndCommas(label);
}

// Collects messages until it is shown. Its texts carry their own blanks and line ends.
class Report {
 public:
  Report(const Models& models, MergeShell& shell)
      : models_(models), shell_(shell), report_(shell.Reporter()) {}

  void TellSchemas();
  void TellUnits();
  // Those that are merged all the same, when others have been told.
  void TellMerged();
  void Show() { report_("", u"", kReportShow); }

 private:
  void Add(const WideString& message) { report_("", message, kReportCollect); }
  WideString NamesOfOtherSchemas() const;
  WideString ListOtherUnits();
  WideString FirstInQuotes() const { return u"\"" + NameOf(models_.front()) + u"\""; }

  const Models& models_;
  MergeShell& shell_;
  ErrorReporter report_;
  WideString schemaList_;
  WideString unitsList_;
  // By unit type, a row for the unit of the first model.
  std::map<WideString, const UnitComparison*> typesThatDiffer_;
};

WideString Report::NamesOfOtherSchemas() const {
  WideString list;
  for (const RunModel& model : models_) {
    if (model.schemaValid) continue;
    list += NameOf(model) + u"(" + model.document->KnownSchemaIdentifier() + u")\n";
  }
  return list;
}

void Report::TellSchemas() {
  schemaList_ = NamesOfOtherSchemas();
  if (schemaList_.empty()) return;
  Add(shell_.Text("not_all_projects_merge") + u" " + FirstInQuotes() + u"(" +
      models_.front().document->KnownSchemaIdentifier() + u")");
  Add(shell_.Text("due_to_invalid_schema") + u".");
  Add(shell_.Text("projects_that_will_not_be_merged"));
  Add(schemaList_);
}

// Where units are ignored a model is left out for another unit alone, and that one is told: another
// prefix is let pass.
WideString Report::ListOtherUnits() {
  const bool prefixesPass = shell_.Options().ignoreUnits;
  WideString list;
  for (const RunModel& model : models_) {
    if (model.unitsValid || model.unitDifferences.empty()) continue;
    list += u"\n  " + NameOf(model) + u":";
    for (const UnitComparison& row : model.unitDifferences) {
      if (prefixesPass && row.code == UnitDifference::kOtherPrefix) continue;
      list += u"\n    " + UnitText(row, row.otherMarker, row.otherLabel);
      typesThatDiffer_.try_emplace(row.unitType, &row);
    }
    list += u"\n";
  }
  return list;
}

void Report::TellUnits() {
  unitsList_ = ListOtherUnits();
  if (unitsList_.empty()) return;
  if (!schemaList_.empty()) Add(u"\n");
  Add(shell_.Text("not_all_projects_merge") + u" " + FirstInQuotes());
  Add(shell_.Text("due_to_invalid_units") + u":\n");
  for (const auto& [type, row] : typesThatDiffer_) {
    Add(u"  " + UnitText(*row, row->marker, row->unitLabel) + u"\n");
  }
  Add(shell_.Text("projects_that_will_not_be_merged") + u"\n");
  Add(unitsList_);
}

void Report::TellMerged() {
  if (schemaList_.empty() && unitsList_.empty()) return;
  WideString list;
  for (std::size_t i = 1; i < models_.size(); ++i) {
    if (models_[i].mergeable) list += NameOf(models_[i]) + u"\"\n";
  }
  if (!list.empty()) Add(shell_.Text("projects_that_will_be_merged") + u"\n\n" + list);
}

}  // namespace

void ReportRejectedProjects(const Models& models, MergeShell& shell) {
  if (std::all_of(models.begin(), models.end(), TakesPart)) return;
  Report report(models, shell);
  report.TellSchemas();
  report.TellUnits();
  report.TellMerged();
  report.Show();
}

}  // namespace corvel
