// Objects whose numbers count in another way than those of the rest of the model.
#pragma once

#include <cstddef>
#include <memory>
#include <unordered_map>
#include <vector>

#include "core/entity.h"
#include "core/ticker.h"
#include "merge/document.h"
#include "merge/federation/units/curve_parameters.h"
#include "merge/federation/units/value_roles.h"

namespace corvel {

// What the coordinates of an object measure. Everywhere else they are lengths.
struct ValueSpace {
  Measure first = Measure::kLength;
  Measure second = Measure::kLength;
  bool isUntouched = false;  // no number of it changes, whatever it is

  // Coordinates change by two factors, so that a circle would not stay one.
  bool IsStretched() const { return first != second; }
  bool operator==(const ValueSpace&) const = default;
};

// The spaces of one model. What stands in the model and in such a space, or in two of them, is
// copied first, so that each has its own.
class ValueSpaces {
 public:
  explicit ValueSpaces(IfcDocument& document, const CurveParameters& curves)
      : document_(document), curves_(curves) {}

  // Looks at one object of the model. Each is to be given once, before Separate.
  void Note(IFC::IfcEntity& entity);
  // Whether that has a use for objects of the class.
  bool IsToBeNoted(const ClassFacts& facts);
  // Makes the copies and files them. Costs nothing where there is no such space, and a walk over
  // the references of the model where there is. False: the user cancelled, or there are no numbers
  // left, which has been reported.
  bool Separate(Ticker& ticker);

  ValueSpace Of(const IFC::IfcEntity& entity) const {
    const auto found = spaces_.find(&entity);
    return found == spaces_.end() ? ValueSpace{} : found->second;
  }
  bool AreNone() const { return spaces_.empty(); }
  // Of a row whose table has columns: in which of them numbers have a unit of their own.
  const std::vector<bool>* ColumnsOf(const IFC::IfcEntity& row) const {
    const auto found = columns_.find(&row);
    return found == columns_.end() ? nullptr : found->second.get();
  }

  // Of a direction or vector in a stretched space: how much longer what it says becomes.
  double StretchOf(const IFC::IfcEntity& vector) const {
    const auto found = stretches_.find(&vector);
    return found == stretches_.end() ? 1.0 : found->second;
  }

  std::size_t Copies() const { return copies_; }
  // Curves in the parameters of a surface that cannot be stretched: they stay as they are.
  std::size_t Unstretchable() const { return unstretchable_; }

 private:
  struct Root {
    IFC::IfcEntity* owner;
    const AttributeFacts* attribute;
    ValueSpace space;
  };
  void NoteTable(const IFC::IfcEntity& table);
  void NoteLibrary(const IFC::IfcEntity& declaration);
  void NoteCurve(IFC::IfcEntity& pcurve, const PlannedValue& planned);

  IfcDocument& document_;
  const CurveParameters& curves_;
  ValuePlans plans_;
  std::vector<Root> roots_;
  std::unordered_map<const IFC::IfcEntity*, ValueSpace> spaces_;
  // All rows of a table have the same.
  std::unordered_map<const IFC::IfcEntity*, std::shared_ptr<const std::vector<bool>>> columns_;
  std::unordered_map<const IFC::IfcEntity*, double> stretches_;
  std::size_t copies_ = 0;
  std::size_t unstretchable_ = 0;
};

}  // namespace corvel
