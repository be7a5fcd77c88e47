#include "host/model_frame.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>
#include <string_view>
#include <utility>

#include "core/entity_cast.h"
#include "merge/federation/si_prefixes.h"
#include "merge/unit_texts.h"
#include "schema/attributes.h"
#include "schema/interfaces/product.h"
#include "schema/interfaces/properties.h"
#include "schema/interfaces/units.h"
#include "step/numbers/number_text.h"

namespace corvel::host {

namespace {

constexpr WideView kConversionSet = u"epset_mapconversion";
// Units may be made from units; a file in which that goes in a circle ends here.
constexpr int kDeepestUnit = 16;

// The values of a conversion, in the order of MapConversion: what the attributes of
// IfcMapConversion are called, and in any case of the letters the properties that stand for them.
constexpr std::array<std::string_view, MapConversion::kCount> kValueNames = {
    "Eastings", "Northings", "OrthogonalHeight", "XAxisAbscissa", "XAxisOrdinate", "Scale"};

WideString Shown(double number) {
  char text[32];
  const auto result = std::to_chars(text, text + sizeof text, number);
  return Widen(std::string(text, result.ptr));
}

std::vector<IFC::IfcEntity*> ChildrenOf(const IFC::IfcEntity& entity) {
  std::vector<IFC::IfcEntity*> children;
  IFC::ChildQueue queue;
  entity.CollectAllChildren(queue);
  while (!queue.IsEmpty()) {
    if (IFC::IfcEntity* const child = queue.TakeBack().entity) children.push_back(child);
  }
  return children;
}

std::optional<double> NumberInText(WideView text) {
  const std::string bytes = Narrow(text);
  double number = 0.0;
  const auto result = std::from_chars(bytes.data(), bytes.data() + bytes.size(), number);
  return result.ec == std::errc() && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

// As it would be written: what writers leave in the last digits makes no difference.
double AsWritten(double value) {
  char text[kNumberRoom];
  return ParseReal({text, static_cast<std::size_t>(FormatReal(value, text) - text)});
}

// The first number in an attribute, be it bare, in a list, typed or quoted.
std::optional<double> NumberIn(ConstAttribute attribute) {
  std::optional<double> number;
  const IFC::IfcEntity* typed = nullptr;
  const auto take = [&](std::optional<double> found) {
    if (!number) number = found;
  };
  attribute.ForEach<IFC::IfcEntity*>([&](const IFC::IfcEntity* value) {
    if (value != nullptr && value->inlineValue && typed == nullptr) typed = value;
  });
  if (typed != nullptr && AttributesOf(*typed).size() != 0) attribute = AttributesOf(*typed)[0];
  attribute.ForEach<double>([&](double value) { take(AsWritten(value)); });
  if (attribute.Facts().kind == ValueKind::kInteger) attribute.ForEach<std::int32_t>(take);
  attribute.ForEach<ModelText>([&](ModelText text) { take(NumberInText(text.ToWide())); });
  return number;
}

// As NumberIn; nothing when the object has no attribute of that name.
std::optional<double> NumberOf(const IFC::IfcEntity& entity, std::string_view name) {
  const auto attribute = AttributesOf(entity).Find(name);
  return attribute ? NumberIn(*attribute) : std::nullopt;
}

// What the attribute of that name refers to; null for nothing.
IFC::IfcEntity* ReferenceOf(const IFC::IfcEntity& entity, std::string_view name) {
  const auto attribute = AttributesOf(entity).Find(name);
  IFC::IfcEntity* const* const reference = attribute ? attribute->As<IFC::IfcEntity*>() : nullptr;
  return reference == nullptr ? nullptr : *reference;
}

std::optional<double> MetresInSI(const IFC::VIfcSIUnit& unit) {
  if (WithoutDotsAndCommas(unit.getNameText()) != u"METRE") return {};
  return FindPrefix(Narrow(WithoutDotsAndCommas(unit.getPrefixText())));
}

// A unit that is made from another: "0.3048 of that unit".
std::optional<double> MetresIn(IFC::IfcEntity* unit) {
  double factor = 1.0;
  for (int depth = 0; depth <= kDeepestUnit; ++depth) {
    if (const auto* const si = EntityCast<IFC::VIfcSIUnit>(unit)) {
      const std::optional<double> metres = MetresInSI(*si);
      return metres ? std::optional(factor * *metres) : std::nullopt;
    }
    if (EntityCast<IFC::VIfcConversionBasedUnit>(unit) == nullptr) return {};
    const IFC::IfcEntity* const measure = ReferenceOf(*unit, "ConversionFactor");
    const auto value = measure == nullptr ? std::nullopt : NumberOf(*measure, "ValueComponent");
    if (!value) return {};
    factor *= *value;
    unit = ReferenceOf(*measure, "UnitComponent");
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
enum Kind : std::ptrdiff_t { kOther, kMapConversion, kPropertySet };

Kind KindByName(IFC::IfcEntity* entity) {
  const WideView name = entity->getClassName();
  if (name == u"IfcMapConversion" || name == u"IfcMapConversionScaled") return kMapConversion;
  return EntityCast<IFC::VirtualIfcPropertySet>(entity) != nullptr ? kPropertySet : kOther;
}

// Asked of every object of a model: the names are compared once per class.
std::ptrdiff_t KindOf(IFC::IfcEntity* entity) {
  static ClassMemory memory;
  const std::type_info* const dynamicClass = &typeid(*entity);
  if (const std::ptrdiff_t* const known = memory.Find(dynamicClass)) return *known;
  const Kind kind = KindByName(entity);
  memory.Remember(dynamicClass, kind);
  return kind;
}

MapConversion ConversionOfRecord(const IFC::IfcEntity& entity) {
  MapConversion conversion;
  for (std::size_t i = 0; i < MapConversion::kCount; ++i) {
    conversion.values[i] = NumberOf(entity, kValueNames[i]).value_or(conversion.values[i]);
  }
  return conversion;
}

// Asked of every set of a model, most of which differ in length.
bool IsConversionSet(IFC::IfcEntity* entity) {
  const auto* const root = EntityCast<IFC::VirtualIfcRoot>(entity);
  const ModelText name = root == nullptr ? ModelText() : root->getName();
  if (name.IsNull()) return false;
  const std::size_t length = name.IsPlain() ? name.Plain().size() : name.Units().size();
  return length == kConversionSet.size() && ToLowerAscii(name.ToWide()) == kConversionSet;
}

// The value of a property stands behind its name and description.
MapConversion ConversionOfSet(const IFC::IfcEntity& set) {
  constexpr std::size_t kValue = 2;
  MapConversion conversion;
  for (IFC::IfcEntity* const child : ChildrenOf(set)) {
    const auto* const property = EntityCast<IFC::VIfcProperty>(child);
    if (property == nullptr) continue;
    const WideString name = ToLowerAscii(property->getPropertyName());
    const auto attributes = AttributesOf(std::as_const(*child));
    const auto value = attributes.size() > kValue ? NumberIn(attributes[kValue]) : std::nullopt;
    for (std::size_t i = 0; value && i < kValueNames.size(); ++i) {
      if (ToLowerAscii(Widen(kValueNames[i])) == name) conversion.values[i] = *value;
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
    const std::optional<double> metres = MetresIn(unit);
    return {NameOf(unit, metres), metres};
  }
  return {};
}

// Most models have none, and need no walk over all objects.
std::optional<MapConversion> MapConversionOf(const IfcDocument& document) {
  if (document.mainContainer == nullptr) return {};
  const auto& sets = document.mainContainer->propertySets;
  if (document.mainContainer->mapConversions.empty() &&
      std::none_of(sets.begin(), sets.end(), IsConversionSet)) {
    return {};
  }
  for (const auto& [number, entity] : document.mainContainer->originalEntities) {
    if (const auto conversion = MapConversionIn(*entity)) return conversion;
  }
  return {};
}

std::optional<MapConversion> MapConversionIn(IFC::IfcEntity& entity) {
  const std::ptrdiff_t kind = KindOf(&entity);
  if (kind == kMapConversion) return ConversionOfRecord(entity);
  if (kind == kPropertySet && IsConversionSet(&entity)) return ConversionOfSet(entity);
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
    text +=
        Widen(kValueNames[i]) + u" " + Shown(other.values[i]) + u" for " + Shown(first.values[i]);
  }
  return text;
}

}  // namespace corvel::host
