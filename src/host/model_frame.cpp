#include "host/model_frame.h"

#include <charconv>
#include <cmath>
#include <string>
#include <unordered_map>

#include "core/entity_cast.h"
#include "merge/unit_texts.h"
#include "schema/interfaces/product.h"
#include "schema/interfaces/properties.h"
#include "schema/interfaces/units.h"
#include "step/record_numbers.h"

namespace corvel::host {

namespace {

constexpr WideView kMeasureWithUnit = u"IfcMeasureWithUnit";
constexpr WideView kConversionSet = u"epset_mapconversion";
// Units may be made from units; a file in which that goes in a circle ends here.
constexpr int kDeepestUnit = 16;

struct Prefix {
  WideView name;
  double factor;
};

constexpr Prefix kPrefixes[] = {
    {u"", 1.0},        {u"EXA", 1e18},   {u"PETA", 1e15},  {u"TERA", 1e12}, {u"GIGA", 1e9},
    {u"MEGA", 1e6},    {u"KILO", 1e3},   {u"HECTO", 1e2},  {u"DECA", 1e1},  {u"DECI", 1e-1},
    {u"CENTI", 1e-2},  {u"MILLI", 1e-3}, {u"MICRO", 1e-6}, {u"NANO", 1e-9}, {u"PICO", 1e-12},
    {u"FEMTO", 1e-15}, {u"ATTO", 1e-18}};

// The values of a conversion by the names of their properties, in small letters, in the order of
// MapConversion; attributes of IfcMapConversion stand in the same order behind the two systems.
constexpr std::array<WideView, MapConversion::kCount> kValueNames = {
    u"eastings", u"northings", u"orthogonalheight", u"xaxisabscissa", u"xaxisordinate", u"scale"};
constexpr std::array<const char16_t*, MapConversion::kCount> kShownNames = {
    u"Eastings", u"Northings", u"OrthogonalHeight", u"XAxisAbscissa", u"XAxisOrdinate", u"Scale"};
constexpr std::size_t kFirstValue = 2;

WideString Shown(double number) {
  char text[32];
  const auto result = std::to_chars(text, text + sizeof text, number);
  return Widen(std::string(text, result.ptr));
}

std::vector<IFC::IfcEntity*> ChildrenOf(const IFC::IfcEntity& entity) {
  std::vector<IFC::IfcEntity*> children;
  IFC::ChildQueue queue;
  entity.collectChildren(queue);
  while (!queue.IsEmpty()) {
    if (IFC::IfcEntity* const child = queue.TakeBack().entity) children.push_back(child);
  }
  return children;
}

std::optional<double> MetresIn(IFC::IfcEntity* unit, int depth);

std::optional<double> MetresInSI(const IFC::VIfcSIUnit& unit) {
  if (WithoutDotsAndCommas(unit.getNameText()) != u"METRE") return {};
  const WideString prefix = WithoutDotsAndCommas(unit.getPrefixText());
  for (const Prefix& known : kPrefixes) {
    if (known.name == prefix) return known.factor;
  }
  return {};
}

// "0.3048 of that unit": the value comes first, the unit is the one child.
std::optional<double> MetresInMeasure(const IFC::IfcEntity& measure, int depth) {
  const std::optional<double> value = NumbersOf(measure).front();
  if (!value) return {};
  for (IFC::IfcEntity* const child : ChildrenOf(measure)) {
    if (const auto metres = MetresIn(child, depth + 1)) return *value * *metres;
  }
  return {};
}

std::optional<double> MetresIn(IFC::IfcEntity* unit, int depth) {
  if (const auto* const si = EntityCast<IFC::VIfcSIUnit>(unit)) return MetresInSI(*si);
  if (depth > kDeepestUnit || EntityCast<IFC::VIfcConversionBasedUnit>(unit) == nullptr) return {};
  for (const IFC::IfcEntity* const child : ChildrenOf(*unit)) {
    if (child->getClassName() == kMeasureWithUnit) return MetresInMeasure(*child, depth);
  }
  return {};
}

WideString NameOf(IFC::IfcEntity* unit, const std::optional<double>& metres) {
  if (const auto* const si = EntityCast<IFC::VIfcSIUnit>(unit)) {
    return WithoutDotsAndCommas(si->getPrefixText() + si->getNameText());
  }
  const auto* const conversion = EntityCast<IFC::VIfcConversionBasedUnit>(unit);
  const WideString name = conversion == nullptr ? WideString() : conversion->getUnitName();
  return metres ? name + u" (" + Shown(*metres) + u" m)" : name;
}

// By class: a model has few classes and many objects.
enum class Kind { kOther, kMapConversion, kPropertySet };

Kind KindOf(IFC::IfcEntity* entity) {
  const WideView name = entity->getClassName();
  if (name == u"IfcMapConversion" || name == u"IfcMapConversionScaled") return Kind::kMapConversion;
  const bool isSet = EntityCast<IFC::VirtualIfcPropertySet>(entity) != nullptr;
  return isSet ? Kind::kPropertySet : Kind::kOther;
}

MapConversion ConversionOfRecord(const IFC::IfcEntity& entity) {
  MapConversion conversion;
  std::vector<std::optional<double>> numbers = NumbersOf(entity);
  numbers.resize(kFirstValue + MapConversion::kCount);
  for (std::size_t i = 0; i < MapConversion::kCount; ++i) {
    conversion.values[i] = numbers[kFirstValue + i].value_or(conversion.values[i]);
  }
  return conversion;
}

bool IsConversionSet(IFC::IfcEntity* entity) {
  const auto* const root = EntityCast<IFC::VirtualIfcRoot>(entity);
  const char16_t* const name = root == nullptr ? nullptr : root->getName();
  return name != nullptr && ToLowerAscii(name) == kConversionSet;
}

// The value of a property stands behind its name and description.
MapConversion ConversionOfSet(const IFC::IfcEntity& set) {
  constexpr std::size_t kValue = 2;
  MapConversion conversion;
  for (IFC::IfcEntity* const child : ChildrenOf(set)) {
    const auto* const property = EntityCast<IFC::VIfcProperty>(child);
    if (property == nullptr) continue;
    const WideString name = ToLowerAscii(property->getPropertyName());
    const std::vector<std::optional<double>> numbers = NumbersOf(*child);
    const auto value = numbers.size() > kValue ? numbers[kValue] : std::nullopt;
    for (std::size_t i = 0; value && i < kValueNames.size(); ++i) {
      if (kValueNames[i] == name) conversion.values[i] = *value;
    }
  }
  return conversion;
}

}  // namespace

LengthUnit LengthUnitOf(const IfcDocument& document) {
  const IFC::IfcEntity* const assignment = document.getIfcUnitAssignment();
  if (assignment == nullptr) return {};
  // From the last unit to the first, as the merge looks for it.
  for (IFC::IfcEntity* const unit : ChildrenOf(*assignment)) {
    if (WithoutDotsAndCommas(UnitTypeText(unit)) != u"LENGTHUNIT") continue;
    const std::optional<double> metres = MetresIn(unit, 0);
    return {NameOf(unit, metres), metres};
  }
  return {};
}

std::optional<MapConversion> MapConversionOf(const IfcDocument& document) {
  if (document.mainContainer == nullptr) return {};
  std::unordered_map<const char16_t*, Kind> kinds;  // by address: each class has one name
  for (const auto& [number, entity] : document.mainContainer->originalEntities) {
    const auto [known, isNew] = kinds.try_emplace(entity->getClassName(), Kind::kOther);
    if (isNew) known->second = KindOf(entity);
    if (known->second == Kind::kMapConversion) return ConversionOfRecord(*entity);
    const bool isSet = known->second == Kind::kPropertySet;
    if (isSet && IsConversionSet(entity)) return ConversionOfSet(*entity);
  }
  return {};
}

bool Differ(const LengthUnit& a, const LengthUnit& b) {
  // Finer than the survey foot is from the foot, coarser than the last digit of a factor.
  constexpr double kSame = 1e-9;
  if (!a.metres || !b.metres) return a.name != b.name;
  return std::abs(*a.metres - *b.metres) > kSame * std::abs(*a.metres);
}

WideString DifferenceBetween(const MapConversion& first, const MapConversion& other) {
  WideString text;
  for (std::size_t i = 0; i < first.values.size(); ++i) {
    if (first.values[i] == other.values[i]) continue;
    if (!text.empty()) text += u", ";
    text += WideString(kShownNames[i]) + u" " + Shown(other.values[i]) + u" for " +
            Shown(first.values[i]);
  }
  return text;
}

}  // namespace corvel::host
