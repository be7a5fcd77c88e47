// What parameters of curves and surfaces measure.
#pragma once

#include <unordered_map>
#include <utility>
#include <vector>

#include "core/entity.h"
#include "merge/federation/units/unit_sizes.h"

namespace corvel {

// Of one model, whose numbers are still in its own units while composite curves are noted.
class CurveParameters {
 public:
  CurveParameters(const Conversions& conversions, const ModelUnits& units)
      : conversions_(conversions), units_(units) {}

  // Whether Note has a use for objects of the class.
  static bool IsToBeNoted(const ClassFacts& facts) {
    return FormOfClass(facts) == Form::kComposite;
  }
  // Remembers how long the parts of a composite curve are; any other object is passed over. To be
  // called before a number is converted.
  void Note(const IFC::IfcEntity& entity);

  // kPlaneAngle of a conic, kLength of a polynomial, kNone of what does not change (lines, whose
  // vectors do, polylines, B-splines) and of a composite curve, which is another matter.
  Measure Of(const IFC::IfcEntity* curve) const;
  bool IsComposite(const IFC::IfcEntity* curve) const;
  // A parameter of a composite curve: the parts before it add up.
  double OnComposite(const IFC::IfcEntity* curve, double parameter) const;

  // Both parameters of a surface. A surface of linear extrusion has none that change.
  std::pair<Measure, Measure> OfSurface(const IFC::IfcEntity* surface) const;

  // By what a number of the measure is multiplied; 1 where it does not change.
  double FactorOf(Measure measure) const;

 private:
  enum class Form : std::uint8_t {
    kOther,
    kConic,
    kLine,
    kPolynomial,
    kPolyline,
    kSpline,
    kIndexed,
    kComposite,
    kOnAnother,  // has the parameters of another curve or surface
    kPlane,
    kCylinder,
    kRound,  // a sphere, a torus
    kRevolution
  };
  struct Part {
    double length = 0.0;     // as the model has it
    double converted = 0.0;  // as it is going to be
    Measure measure = Measure::kNone;
    const IFC::IfcEntity* composite = nullptr;  // null: the part is none
  };
  // The curve or surface whose parameters these are.
  const IFC::IfcEntity* Underlying(const IFC::IfcEntity* entity) const;
  Form FormOf(const IFC::IfcEntity& entity) const;
  static Form FormOfClass(const ClassFacts& facts);
  Part PartOf(const IFC::IfcEntity& segment, int depth);
  double LengthOf(const IFC::IfcEntity& curve, int depth);
  double LengthOfTrimmed(const IFC::IfcEntity& trimmed) const;
  double TrimOf(const IFC::IfcEntity& trimmed, const char* attribute,
                const IFC::IfcEntity* basis) const;
  double OnComposite(const IFC::IfcEntity* curve, double parameter, int depth) const;
  double RadiansPerAngle() const;
  const std::vector<Part>& NoteComposite(const IFC::IfcEntity& composite, int depth);

  const Conversions& conversions_;
  const ModelUnits& units_;
  std::unordered_map<const IFC::IfcEntity*, std::vector<Part>> composites_;
  mutable std::unordered_map<const ClassFacts*, Form> forms_;
};

}  // namespace corvel
