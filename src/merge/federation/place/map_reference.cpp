#include "merge/federation/place/map_reference.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

#include "core/main_container.h"
#include "merge/federation/attribute_values.h"
#include "merge/federation/map_properties.h"
#include "merge/federation/place/map_properties_reader.h"
#include "merge/federation/tree/length_in_metres.h"
#include "merge/federation/tree/world_places.h"

namespace corvel {

namespace {

using IFC::IfcEntity;

constexpr double kUnstated = 0.0;
constexpr double kMostShrinking = 0.01;
// In metres: that of maps, those of who draws on paper, the foot, and that of American surveyors.
constexpr double kUsualUnits[] = {1.0, 1e-3, 1e-2, 1e3, 0.3048, 1200.0 / 3937.0};

// What conversions begin with, in the unit of the map.
struct Numbers {
  Triple origin{};
  double abscissa = 1.0;
  double ordinate = 0.0;
  Triple scale{1.0, 1.0, 1.0};  // map units for a unit of the model
  bool areOfMap = true;         // the scale; otherwise lengths stay what they are
};

double RealOr(const IfcEntity& entity, std::string_view attribute, double absent) {
  const auto found = AttributesOf(entity).Find(attribute);
  const double* const value = found ? found->As<double>() : nullptr;
  return value == nullptr ? absent : *value;
}

// IFC4X4 has another name for the same.
double FactorOf(const IfcEntity& conversion, std::string_view name, std::string_view laterName) {
  return RealOr(conversion, name, RealOr(conversion, laterName, 1.0));
}

Numbers NumbersOfConversion(const IfcEntity& conversion) {
  const double scale = RealOr(conversion, "Scale", 1.0);
  Numbers numbers;
  numbers.origin = {RealOf(conversion, "Eastings"), RealOf(conversion, "Northings"),
                    RealOf(conversion, "OrthogonalHeight")};
  numbers.abscissa = RealOr(conversion, "XAxisAbscissa", 1.0);
  numbers.ordinate = RealOr(conversion, "XAxisOrdinate", 0.0);
  numbers.scale = {scale * FactorOf(conversion, "FactorX", "ScaleX"),
                   scale * FactorOf(conversion, "FactorY", "ScaleY"),
                   scale * FactorOf(conversion, "FactorZ", "ScaleZ")};
  return numbers;
}

// Nothing for one in angles.
std::optional<Numbers> NumbersOfRigid(const IfcEntity& operation) {
  Numbers numbers;
  numbers.areOfMap = false;
  const char* const names[] = {"FirstCoordinate", "SecondCoordinate"};
  for (std::size_t i = 0; i < std::size(names); ++i) {
    const IfcEntity* const typed = ReferenceOf(operation, names[i]);
    if (typed == nullptr || WideView(typed->getClassName()) != u"IfcLengthMeasure") return {};
    numbers.origin[i] = RealOf(*typed, "value");
  }
  numbers.origin[2] = RealOf(operation, "Height");
  return numbers;
}

Numbers NumbersOfProperties(const MapProperties& properties) {
  const double scale = properties.NumberOr(u"scale", 1.0);
  Numbers numbers;
  numbers.origin = {properties.NumberOr(u"eastings", 0.0), properties.NumberOr(u"northings", 0.0),
                    properties.NumberOr(u"orthogonalheight", 0.0)};
  numbers.abscissa = properties.NumberOr(u"xaxisabscissa", 1.0);
  numbers.ordinate = properties.NumberOr(u"xaxisordinate", 0.0);
  numbers.scale = {scale, scale, scale};
  return numbers;
}

bool AreFinite(const MapFrame& frame) {
  double sum = frame.cosine + frame.sine;
  for (const Triple& triple : {frame.origin, frame.scale}) sum += triple[0] + triple[1] + triple[2];
  return std::isfinite(sum);
}

class Reader {
 public:
  explicit Reader(const IfcDocument& document)
      : document_(document), metresPerUnit_(MetresPerLengthUnit(document.getIfcUnitAssignment())) {}

  MapReading Read() {
    Gather();
    if (!operations_.empty()) {
      ReadOperations();
    } else if (!conversionSets_.empty()) {
      ReadSets();
    }
    if (!reading_.problem.empty()) reading_.reference.reset();
    if (reading_.reference) reading_.reference->contexts = std::move(contexts_);
    return std::move(reading_);
  }

 private:
  enum class Kind { kOther, kContext, kOperation, kText, kSet };

  void Gather() {
    for (const auto& [number, entity] : document_.mainContainer->originalEntities) {
      switch (KindOf(*entity)) {
        case Kind::kOther: break;
        case Kind::kContext: contexts_.push_back(entity); break;
        case Kind::kOperation: NoteOperation(*entity); break;
        case Kind::kText: texts_[ReferenceOf(*entity, "CoordinateReferenceSystem")] = entity; break;
        case Kind::kSet: NoteSet(*entity); break;
      }
    }
  }

  // Asked of every object: classes are few.
  Kind KindOf(const IfcEntity& entity) {
    const ClassFacts* const facts = FindFacts(entity);
    const auto [kind, isNew] = kinds_.try_emplace(facts, Kind::kOther);
    if (!isNew) return kind->second;
    if (IsOrIsBelow(facts, "IfcGeometricRepresentationSubContext")) return kind->second;
    if (IsOrIsBelow(facts, "IfcGeometricRepresentationContext")) {
      kind->second = Kind::kContext;
    } else if (IsOrIsBelow(facts, "IfcCoordinateOperation")) {
      kind->second = Kind::kOperation;
    } else if (IsOrIsBelow(facts, "IfcWellKnownText")) {
      kind->second = Kind::kText;
    } else if (IsOrIsBelow(facts, "IfcPropertySet")) {
      kind->second = Kind::kSet;
    }
    return kind->second;
  }

  // From one reference system to another is no matter of the model's place.
  void NoteOperation(IfcEntity& operation) {
    const IfcEntity* const source = ReferenceOf(operation, "SourceCRS");
    if (source != nullptr && KindOf(*source) == Kind::kContext) operations_.push_back(&operation);
  }

  void NoteSet(IfcEntity& set) {
    const WideString name = TextOf(set, "Name");
    if (!IsNameOfMapProperties(name)) return;
    (IsNameOfConversionProperties(name) ? conversionSets_ : systemSets_).push_back(&set);
  }

  // --- From IFC4 on ------------------------------------------------------------------------------

  void ReadOperations() {
    const auto isOfSpace = [](const IfcEntity* operation) {
      return IntegerOf(*ReferenceOf(*operation, "SourceCRS"), "CoordinateSpaceDimension") == 3;
    };
    std::stable_partition(operations_.begin(), operations_.end(), isOfSpace);
    for (IfcEntity* const operation : operations_) ReadOperation(*operation);
  }

  void ReadOperation(IfcEntity& operation) {
    const IfcEntity* const system = ReferenceOf(operation, "TargetCRS");
    const bool isConversion = IsOrIsBelow(FindFacts(operation), "IfcMapConversion");
    const auto numbers =
        isConversion ? std::optional(NumbersOfConversion(operation)) : NumbersOfRigid(operation);
    if (!numbers) return Fail(u"is not in lengths");
    const std::optional<double> metresPerMapUnit = UnitOf(system);
    if (!metresPerMapUnit) return Fail(u"is in a unit that cannot be told");
    Add({&operation, ReferenceOf(operation, "SourceCRS"), {}, *metresPerMapUnit}, *numbers,
        SystemOf(system), {&operation});
  }

  // Nothing for one that leads to no metre.
  static std::optional<double> UnitOf(const IfcEntity* system) {
    if (system == nullptr) return kUnstated;
    for (const char* const attribute : {"MapUnit", "HeightUnit"}) {
      if (const IfcEntity* const unit = ReferenceOf(*system, attribute)) return MetresPerUnit(unit);
    }
    return kUnstated;
  }

  ReferenceSystem SystemOf(const IfcEntity* system) const {
    ReferenceSystem stated;
    if (system == nullptr) return stated;
    stated.parts = {TextOf(*system, "Name"),
                    TextOf(*system, "GeodeticDatum"),
                    TextOf(*system, "VerticalDatum"),
                    TextOf(*system, "MapProjection"),
                    TextOf(*system, "MapZone"),
                    TextOf(*system, "PrimeMeridian"),
                    {}};
    const auto text = texts_.find(system);
    if (text != texts_.end()) {
      stated.parts[ReferenceSystem::kWellKnownText] = TextOf(*text->second, "WellKnownText");
    }
    return stated;
  }

  // --- IFC2X3 ------------------------------------------------------------------------------------

  void ReadSets() {
    const MapProperties ofSystem(systemSets_);
    const WideString unit = ofSystem.TextOr(u"mapunit");
    const auto metresPerMapUnit = unit.empty() ? std::optional(kUnstated) : MetresPerWord(unit);
    if (!metresPerMapUnit) return Fail(u"is in a unit that cannot be told ('" + unit + u"')");
    IfcEntity* const context = FirstContextInSpace();
    for (IfcEntity* const set : conversionSets_) {
      const MapProperties properties({set});
      ReferenceSystem system;
      system.parts = {ofSystem.TextOr(u"name"),
                      ofSystem.TextOr(u"geodeticdatum"),
                      ofSystem.TextOr(u"verticaldatum"),
                      ofSystem.TextOr(u"mapprojection"),
                      ofSystem.TextOr(u"mapzone"),
                      {},
                      {}};
      WideString& name = system.parts[ReferenceSystem::kName];
      if (name.empty()) name = properties.TextOr(u"targetcrs");
      Add({set, context, {}, *metresPerMapUnit}, NumbersOfProperties(properties), system, {set});
    }
    if (!reading_.reference) return;
    std::vector<IfcEntity*>& records = reading_.reference->records;
    records.insert(records.end(), systemSets_.begin(), systemSets_.end());
  }

  IfcEntity* FirstContextInSpace() const {
    const auto found =
        std::find_if(contexts_.begin(), contexts_.end(), [](const IfcEntity* context) {
          return IntegerOf(*context, "CoordinateSpaceDimension") == 3;
        });
    return found == contexts_.end() ? nullptr : *found;
  }

  // --- Both --------------------------------------------------------------------------------------

  void Add(MapOperation operation, const Numbers& numbers, const ReferenceSystem& system,
           const std::vector<IfcEntity*>& records) {
    MapFrame& frame = operation.frame;
    if (operation.metresPerMapUnit == kUnstated) {
      operation.metresPerMapUnit =
          numbers.areOfMap ? UnitByScale(numbers.scale[0]) : metresPerUnit_;
    }
    frame.origin = Times(numbers.origin, operation.metresPerMapUnit);
    if (numbers.areOfMap) {
      frame.scale = Times(numbers.scale, operation.metresPerMapUnit / metresPerUnit_);
    }
    const double length = std::hypot(numbers.abscissa, numbers.ordinate);
    if (length > 0.0) {
      frame.cosine = numbers.abscissa / length;
      frame.sine = numbers.ordinate / length;
    }
    if (!AreFinite(frame)) return Fail(u"holds what is no number");
    const auto isNoScale = [](double scale) { return scale <= 0.0; };
    if (std::any_of(frame.scale.begin(), frame.scale.end(), isNoScale)) {
      return Fail(u"scales by nothing, or by less");
    }
    if (system.Name().empty()) return Fail(u"names no reference system");
    if (!ReadWorld(operation)) return Fail(u"is of a world coordinate system that is no place");
    Enter(operation, system, records);
  }

  // A scale that is more than what a map shrinks by leads from the unit of the project to another.
  double UnitByScale(double scale) const {
    if (std::abs(scale - 1.0) <= kMostShrinking) return metresPerUnit_;
    double unit = metresPerUnit_;
    double nearest = kMostShrinking;
    for (const double usual : kUsualUnits) {
      const double shrinking = std::abs(scale * usual / metresPerUnit_ - 1.0);
      if (shrinking >= nearest) continue;
      nearest = shrinking;
      unit = usual;
    }
    return unit;
  }

  bool ReadWorld(MapOperation& operation) const {
    if (operation.context == nullptr) return true;
    const auto world = PlaceOf(ReferenceOf(*operation.context, "WorldCoordinateSystem"));
    if (!world) return false;
    operation.frame.world = *world;
    operation.frame.world.origin = Times(world->origin, metresPerUnit_);
    return true;
  }

  void Enter(const MapOperation& operation, const ReferenceSystem& system,
             const std::vector<IfcEntity*>& records) {
    if (!reading_.reference) {
      reading_.reference = MapReference{system, {}, {}, {}};
    } else if (!SameSystem(reading_.reference->system, system) ||
               !SameFrame(reading_.reference->First().frame, operation.frame)) {
      return Fail(u"is not the only one, and another says something else");
    }
    MapReference& reference = *reading_.reference;
    reference.operations.push_back(operation);
    reference.records.insert(reference.records.end(), records.begin(), records.end());
  }

  // The first counts.
  void Fail(const WideString& problem) {
    if (reading_.problem.empty()) reading_.problem = problem;
  }

  const IfcDocument& document_;
  double metresPerUnit_;
  std::unordered_map<const ClassFacts*, Kind> kinds_;
  std::vector<IfcEntity*> contexts_;
  std::vector<IfcEntity*> operations_;
  std::vector<IfcEntity*> conversionSets_;
  std::vector<IfcEntity*> systemSets_;
  std::unordered_map<const IfcEntity*, const IfcEntity*> texts_;  // by the system that they tell
  MapReading reading_;
};

}  // namespace

MapReading ReadMapReference(const IfcDocument& document) {
  if (document.mainContainer == nullptr) return {};
  return Reader(document).Read();
}

}  // namespace corvel
