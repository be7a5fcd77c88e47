// In which unit a model tells its place on the map, and what scale leads there.
#pragma once

#include <string_view>
#include <unordered_set>
#include <vector>

#include "core/entity.h"
#include "merge/document.h"
#include "merge/federation/units/unit_sizes.h"

namespace corvel {

// A conversion into map coordinates gives them in the unit of the map, which is a matter of the
// reference system where it names one. Where it names none the scale tells: a scale that differs
// from 1 by more than a map shrinks what is on it leads from one unit to another, and without such
// a scale coordinates are in the length unit of the model, as everything else.
class MapUnits {
 public:
  explicit MapUnits(double lengthFactor) : lengthFactor_(lengthFactor) {}

  // IFC2X3 tells it by property sets: looks at one object of such a class. Each is to be given
  // once.
  void Note(IFC::IfcEntity& entity);
  static bool IsToBeNoted(const ClassFacts& facts) {
    return std::string_view(facts.name) == "IfcPropertySet";
  }
  // Behind the last Note: puts in the scales that have come to be needed. False: there are no
  // numbers left, which has been reported.
  bool PutInScales(IfcDocument& document);

  // Of an IfcCoordinateOperation: "Eastings", "Height" or another coordinate stays, and if it is
  // "Scale" it changes.
  bool IsInUnitOfMap(const IFC::IfcEntity& operation, std::string_view attribute) const;
  // By what scales are multiplied there.
  double ScaleFactor() const { return 1.0 / lengthFactor_; }

  // The same of single properties.
  bool IsCoordinate(const IFC::IfcEntity& property) const {
    return coordinates_.count(&property) != 0;
  }
  bool IsScale(const IFC::IfcEntity& property) const { return scales_.count(&property) != 0; }

 private:
  double lengthFactor_;
  bool isUnitNamed_ = false;  // by a property
  std::vector<IFC::IfcEntity*> conversions_;
  std::unordered_set<const IFC::IfcEntity*> coordinates_;
  std::unordered_set<const IFC::IfcEntity*> scales_;
};

}  // namespace corvel
