#include "merge/federation/units/curve_parameters.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <string_view>

#include "merge/federation/attribute_values.h"

namespace corvel {

namespace {

// Curves on curves and composites in composites; files that go in circles do it without an end.
constexpr int kMostSteps = 64;
constexpr int kMostLevels = 8;

using Vector = std::array<double, 3>;

Vector VectorOf(const IFC::IfcEntity* entity, std::string_view attribute) {
  Vector vector{};
  const List<double>* const numbers = entity == nullptr ? nullptr : RealsOf(*entity, attribute);
  if (numbers == nullptr) return vector;
  std::copy_n(numbers->begin(), std::min(numbers->size(), vector.size()), vector.begin());
  return vector;
}

double Dot(const Vector& one, const Vector& other) {
  return one[0] * other[0] + one[1] * other[1] + one[2] * other[2];
}

Vector Cross(const Vector& a, const Vector& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

Vector Minus(const Vector& one, const Vector& other) {
  return {one[0] - other[0], one[1] - other[1], one[2] - other[2]};
}

Vector Normal(const Vector& vector, const Vector& otherwise) {
  const double length = std::sqrt(Dot(vector, vector));
  if (length == 0.0) return otherwise;
  return {vector[0] / length, vector[1] / length, vector[2] / length};
}

double ParameterOnLine(const IFC::IfcEntity& line, const Vector& point) {
  const IFC::IfcEntity* const vector = ReferenceOf(line, "Dir");
  if (vector == nullptr) return 0.0;
  const double magnitude = RealOf(*vector, "Magnitude");
  const Vector direction =
      Normal(VectorOf(ReferenceOf(*vector, "Orientation"), "DirectionRatios"), {1.0, 0.0, 0.0});
  const Vector origin = VectorOf(ReferenceOf(line, "Pnt"), "Coordinates");
  return magnitude == 0.0 ? 0.0 : Dot(Minus(point, origin), direction) / magnitude;
}

// In radians.
double ParameterOnConic(const IFC::IfcEntity& conic, const Vector& point) {
  const IFC::IfcEntity* const position = ReferenceOf(conic, "Position");
  if (position == nullptr) return 0.0;
  const Vector origin = VectorOf(ReferenceOf(*position, "Location"), "Coordinates");
  const Vector z = Normal(VectorOf(ReferenceOf(*position, "Axis"), "DirectionRatios"), {0, 0, 1});
  const Vector told =
      Normal(VectorOf(ReferenceOf(*position, "RefDirection"), "DirectionRatios"), {1, 0, 0});
  const double along = Dot(told, z);
  const Vector x =
      Normal({told[0] - along * z[0], told[1] - along * z[1], told[2] - along * z[2]}, {1, 0, 0});
  const Vector way = Minus(point, origin);
  const double first = RealOf(conic, "SemiAxis1");
  const double second = RealOf(conic, "SemiAxis2");
  const bool isEllipse = first > 0.0 && second > 0.0;
  return std::atan2(Dot(way, Cross(z, x)) / (isEllipse ? second : 1.0),
                    Dot(way, x) / (isEllipse ? first : 1.0));
}

// Of a typed value or of a plain one.
double TypedOrPlain(const IFC::IfcEntity& entity, std::string_view attribute) {
  const IFC::IfcEntity* const typed = ReferenceOf(entity, attribute);
  return typed == nullptr ? RealOf(entity, attribute) : RealOf(*typed, "value");
}

std::size_t SizeOf(const IFC::IfcEntity& entity, std::string_view attribute) {
  const EntityList* const list = ReferencesOf(entity, attribute);
  return list == nullptr ? 0 : list->size();
}

// A model in which it has a type of its own is one of IFC4X3.
bool IsLength(const IFC::IfcEntity* typed) {
  return typed != nullptr && FindFacts(*typed) != nullptr &&
         MeasureOf(*FindFacts(*typed)->Attribute(0).type) == Measure::kLength;
}

double LengthOfSpline(const IFC::IfcEntity& spline) {
  if (const List<double>* const knots = RealsOf(spline, "Knots")) {
    return knots->empty() ? 0.0 : (*knots)[knots->size() - 1] - (*knots)[0];
  }
  const std::int32_t degree = IntegerOf(spline, "Degree");
  const auto points = static_cast<double>(SizeOf(spline, "ControlPointsList"));
  return degree <= 0 ? 0.0 : (points - 1.0) / degree;
}

}  // namespace

CurveParameters::Form CurveParameters::FormOf(const IFC::IfcEntity& entity) const {
  const ClassFacts* const facts = FindFacts(entity);
  if (facts == nullptr) return Form::kOther;
  const auto [place, isNew] = forms_.try_emplace(facts, Form::kOther);
  if (isNew) place->second = FormOfClass(*facts);
  return place->second;
}

CurveParameters::Form CurveParameters::FormOfClass(const ClassFacts& facts) {
  constexpr std::pair<std::string_view, Form> kForms[] = {
      {"IfcConic", Form::kConic},
      {"IfcLine", Form::kLine},
      {"IfcPolynomialCurve", Form::kPolynomial},
      {"IfcPolyline", Form::kPolyline},
      {"IfcBSplineCurve", Form::kSpline},
      {"IfcIndexedPolyCurve", Form::kIndexed},
      {"IfcCompositeCurve", Form::kComposite},
      {"Ifc2DCompositeCurve", Form::kComposite},
      {"IfcTrimmedCurve", Form::kOnAnother},
      {"IfcOffsetCurve2D", Form::kOnAnother},
      {"IfcOffsetCurve3D", Form::kOnAnother},
      {"IfcSurfaceCurve", Form::kOnAnother},
      {"IfcPcurve", Form::kOnAnother},
      {"IfcRectangularTrimmedSurface", Form::kOnAnother},
      {"IfcCurveBoundedPlane", Form::kOnAnother},
      {"IfcCurveBoundedSurface", Form::kOnAnother},
      {"IfcPlane", Form::kPlane},
      {"IfcCylindricalSurface", Form::kCylinder},
      {"IfcSphericalSurface", Form::kRound},
      {"IfcToroidalSurface", Form::kRound},
      {"IfcSurfaceOfRevolution", Form::kRevolution}};
  for (const ClassFacts* at = &facts; at != nullptr; at = at->supertype) {
    for (const auto& [name, form] : kForms) {
      if (name == at->name) return form;
    }
  }
  return Form::kOther;
}

const IFC::IfcEntity* CurveParameters::Underlying(const IFC::IfcEntity* entity) const {
  constexpr std::string_view kWays[] = {"BasisCurve", "Curve3D", "ReferenceCurve", "BasisSurface"};
  for (int step = 0; entity != nullptr && step < kMostSteps; ++step) {
    if (FormOf(*entity) != Form::kOnAnother) return entity;
    const IFC::IfcEntity* next = nullptr;
    for (const std::string_view way : kWays) {
      if (next == nullptr) next = ReferenceOf(*entity, way);
    }
    entity = next;
  }
  return nullptr;
}

Measure CurveParameters::Of(const IFC::IfcEntity* curve) const {
  const IFC::IfcEntity* const underlying = Underlying(curve);
  if (underlying == nullptr) return Measure::kNone;
  const Form form = FormOf(*underlying);
  if (form == Form::kConic) return Measure::kPlaneAngle;
  return form == Form::kPolynomial ? Measure::kLength : Measure::kNone;
}

bool CurveParameters::IsComposite(const IFC::IfcEntity* curve) const {
  const IFC::IfcEntity* const underlying = Underlying(curve);
  return underlying != nullptr && FormOf(*underlying) == Form::kComposite;
}

std::pair<Measure, Measure> CurveParameters::OfSurface(const IFC::IfcEntity* surface) const {
  const IFC::IfcEntity* const underlying = Underlying(surface);
  if (underlying == nullptr) return {Measure::kNone, Measure::kNone};
  switch (FormOf(*underlying)) {
    case Form::kPlane: return {Measure::kLength, Measure::kLength};
    case Form::kCylinder: return {Measure::kPlaneAngle, Measure::kLength};
    case Form::kRound: return {Measure::kPlaneAngle, Measure::kPlaneAngle};
    case Form::kRevolution: {
      const IFC::IfcEntity* const profile = ReferenceOf(*underlying, "SweptCurve");
      return {Measure::kPlaneAngle,
              profile == nullptr ? Measure::kNone : Of(ReferenceOf(*profile, "Curve"))};
    }
    default: return {Measure::kNone, Measure::kNone};
  }
}

double CurveParameters::FactorOf(Measure measure) const {
  if (measure == Measure::kNone) return 1.0;
  const Conversion& conversion = conversions_[static_cast<std::size_t>(measure)];
  return conversion.kind == Conversion::Kind::kConvert ? conversion.factor : 1.0;
}

void CurveParameters::Note(const IFC::IfcEntity& entity) {
  if (FormOf(entity) == Form::kComposite) NoteComposite(entity, 0);
}

// One that is made of itself has no parts where it comes to itself.
const std::vector<CurveParameters::Part>& CurveParameters::NoteComposite(
    const IFC::IfcEntity& composite, int depth) {
  const auto [place, isNew] = composites_.try_emplace(&composite);
  if (!isNew) return place->second;
  std::vector<Part> parts;
  const EntityList* const segments = ReferencesOf(composite, "Segments");
  if (segments != nullptr && depth < kMostLevels) {
    for (const IFC::IfcEntity* const segment : *segments) {
      if (segment != nullptr && FindFacts(*segment) != nullptr) {
        parts.push_back(PartOf(*segment, depth));
      }
    }
  }
  return composites_[&composite] = std::move(parts);
}

CurveParameters::Part CurveParameters::PartOf(const IFC::IfcEntity& segment, int depth) {
  Part part;
  const IFC::IfcEntity* const parent = ReferenceOf(segment, "ParentCurve");
  if (parent == nullptr) return part;
  part.measure = Of(parent);
  const auto attributes = AttributesOf(segment);
  if (attributes.Find("ParamLength")) {
    part.length = RealOf(segment, "ParamLength");
  } else if (attributes.Find("SegmentLength")) {
    part.length = std::abs(TypedOrPlain(segment, "SegmentLength"));
    if (IsLength(ReferenceOf(segment, "SegmentLength"))) part.measure = Measure::kLength;
  } else {
    part.length = LengthOf(*parent, depth);
    if (FormOf(*parent) == Form::kComposite) part.composite = parent;
  }
  part.converted = part.length * FactorOf(part.measure);
  if (part.composite != nullptr) {
    part.converted = 0.0;
    for (const Part& inner : NoteComposite(*parent, depth + 1)) part.converted += inner.converted;
  }
  return part;
}

double CurveParameters::LengthOf(const IFC::IfcEntity& curve, int depth) {
  switch (FormOf(curve)) {
    case Form::kPolyline: {
      const std::size_t points = SizeOf(curve, "Points");
      return points == 0 ? 0.0 : static_cast<double>(points - 1);
    }
    case Form::kSpline: return LengthOfSpline(curve);
    case Form::kIndexed: return static_cast<double>(SizeOf(curve, "Segments"));
    case Form::kConic: return 2.0 * std::numbers::pi / RadiansPerAngle();
    case Form::kComposite: {
      double sum = 0.0;
      for (const Part& part : NoteComposite(curve, depth + 1)) sum += part.length;
      return sum;
    }
    case Form::kOnAnother: return LengthOfTrimmed(curve);
    default: return 0.0;
  }
}

double CurveParameters::RadiansPerAngle() const {
  const auto& size = units_.Of(Measure::kPlaneAngle).size;
  return size ? size->factor : 1.0;
}

double CurveParameters::LengthOfTrimmed(const IFC::IfcEntity& trimmed) const {
  const IFC::IfcEntity* const basis = Underlying(ReferenceOf(trimmed, "BasisCurve"));
  const double length = TrimOf(trimmed, "Trim2", basis) - TrimOf(trimmed, "Trim1", basis);
  if (basis == nullptr || FormOf(*basis) != Form::kConic) return std::abs(length);
  // The way round that the curve is told to take.
  const auto sense = AttributesOf(trimmed).Find("SenseAgreement");
  const bool isBackward = sense && sense->EnumerationName() == "F";
  const double turn = 2.0 * std::numbers::pi / RadiansPerAngle();
  const double part = std::fmod(isBackward ? -length : length, turn);
  return part <= 0.0 ? part + turn : part;
}

double CurveParameters::TrimOf(const IFC::IfcEntity& trimmed, const char* attribute,
                               const IFC::IfcEntity* basis) const {
  const EntityList* const trims = ReferencesOf(trimmed, attribute);
  if (trims == nullptr) return 0.0;
  const IFC::IfcEntity* point = nullptr;
  for (const IFC::IfcEntity* const trim : *trims) {
    if (trim == nullptr) continue;
    if (!trim->isComplexType()) return RealOf(*trim, "value");
    point = trim;
  }
  if (point == nullptr || basis == nullptr) return 0.0;
  const Vector place = VectorOf(point, "Coordinates");
  if (FormOf(*basis) == Form::kConic) return ParameterOnConic(*basis, place) / RadiansPerAngle();
  return FormOf(*basis) == Form::kLine ? ParameterOnLine(*basis, place) : 0.0;
}

double CurveParameters::OnComposite(const IFC::IfcEntity* curve, double parameter) const {
  const double converted = OnComposite(Underlying(curve), parameter, 0);
  return std::isfinite(converted) ? converted : parameter;
}

double CurveParameters::OnComposite(const IFC::IfcEntity* curve, double parameter,
                                    int depth) const {
  const auto known = composites_.find(curve);
  if (known == composites_.end() || depth > kMostLevels) return parameter;
  double before = 0.0;
  double converted = 0.0;
  for (const Part& part : known->second) {
    const double rest = parameter - before;
    if (rest <= part.length || &part == &known->second.back()) {
      return converted + (part.composite == nullptr ? rest * FactorOf(part.measure)
                                                    : OnComposite(part.composite, rest, depth + 1));
    }
    converted += part.converted;
    before += part.length;
  }
  return parameter;
}

}  // namespace corvel
