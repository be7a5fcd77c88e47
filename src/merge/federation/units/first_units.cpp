#include "merge/federation/units/first_units.h"

#include <unordered_map>
#include <vector>

#include "merge/federation/attribute_values.h"
#include "merge/federation/units/measures.h"
#include "merge/federation/units/object_copies.h"
#include "step/reader/parser.h"

namespace corvel {

namespace {

// Units with all that they are made from, each once.
class UnitCopies {
 public:
  explicit UnitCopies(IfcDocument& document) : document_(document) {}

  // Null when there is none to be had.
  IFC::IfcEntity* Of(const IFC::IfcEntity& unit) {
    IFC::IfcEntity* const copy = Copy(unit);
    while (!waiting_.empty()) {
      IFC::IfcEntity& next = *waiting_.back();
      waiting_.pop_back();
      for (const Attribute attribute : AttributesOf(next)) {
        attribute.ForEach<IFC::IfcEntity*>([this](IFC::IfcEntity*& reference) {
          if (reference != nullptr && !reference->inlineValue) reference = Copy(*reference);
        });
      }
    }
    return copy;
  }

 private:
  IFC::IfcEntity* Copy(const IFC::IfcEntity& original) {
    const auto [place, isNew] = copies_.try_emplace(&original);
    if (!isNew) return place->second;
    place->second = CopyObject(original, document_);
    if (place->second != nullptr) waiting_.push_back(place->second);
    return place->second;
  }

  IfcDocument& document_;
  std::unordered_map<const IFC::IfcEntity*, IFC::IfcEntity*> copies_;
  std::vector<IFC::IfcEntity*> waiting_;
};

bool IsMeasured(const IFC::IfcEntity& unit) {
  return MeasureOfUnit(WordOf(unit, "UnitType")) != Measure::kNone;
}

std::vector<IFC::IfcEntity*> UnitsOf(const IFC::IfcEntity* assignment, bool areMeasured) {
  std::vector<IFC::IfcEntity*> chosen;
  const EntityList* const units =
      assignment == nullptr ? nullptr : ReferencesOf(*assignment, "Units");
  if (units == nullptr) return chosen;
  for (IFC::IfcEntity* const unit : *units) {
    if (unit != nullptr && IsMeasured(*unit) == areMeasured) chosen.push_back(unit);
  }
  return chosen;
}

// A model without units gets an assignment.
IFC::IfcEntity* AssignmentOf(IfcDocument& document) {
  if (IFC::IfcEntity* const known = document.getIfcUnitAssignment()) return known;
  IFC::IfcEntity* const project = document.getIfcProject();
  if (project == nullptr) return nullptr;
  IFC::IfcEntity* const made = document.CreateESet("IFCUNITASSIGNMENT");
  if (made == nullptr || !SetAttribute(*project, "UnitsInContext", made)) return nullptr;
  document.GetParser().ifcUnitAssignment = made;
  return made;
}

}  // namespace

bool AssignUnitsOf(const IfcDocument& first, IfcDocument& later) {
  IFC::MainContainer& container = *later.mainContainer;
  IFC::IfcEntity* const assignment = AssignmentOf(later);
  if (assignment == nullptr) return !container.HasRunOutOfNumbers();
  UnitCopies copies(later);
  EntityList units;
  for (IFC::IfcEntity* const unit : UnitsOf(first.getIfcUnitAssignment(), true)) {
    if (IFC::IfcEntity* const copy = copies.Of(*unit)) units.Append(copy, container.Pool());
    if (container.HasRunOutOfNumbers()) return false;
  }
  for (IFC::IfcEntity* const unit : UnitsOf(assignment, false)) {
    units.Append(unit, container.Pool());
  }
  SetAttribute(*assignment, "Units", units);
  container.NoteChangedReferences();
  return true;
}

}  // namespace corvel
