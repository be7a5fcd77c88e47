#include "host/diff/class_words.h"

#include <algorithm>

#include "merge/federation/attribute_values.h"
#include "schema/attributes.h"

namespace corvel::host::diff {

namespace {

constexpr std::uint64_t kBasis = 0xcbf29ce484222325ull;
constexpr std::uint64_t kPrime = 0x100000001b3ull;
constexpr std::string_view kBasisCurve = "BasisCurve";

bool IsOrDerivesFrom(const ClassFacts& facts, std::string_view name) {
  for (const ClassFacts* at = &facts; at != nullptr; at = at->supertype) {
    if (at->name == name) return true;
  }
  return false;
}

Role RoleOf(const ClassFacts& facts) {
  if (IsOrDerivesFrom(facts, "IfcRepresentationContext")) return Role::kContext;
  if (!IsOrDerivesFrom(facts, "IfcRoot")) return Role::kValue;
  if (IsOrDerivesFrom(facts, "IfcRelationship")) return Role::kRelation;
  if (IsOrDerivesFrom(facts, "IfcPropertySetDefinition")) return Role::kProperties;
  return Role::kObject;
}

Dimension DimensionOf(const TypeFacts& type) {
  if (type.IsOrIsMadeOf("IfcLengthMeasure")) return Dimension::kLength;
  if (type.IsOrIsMadeOf("IfcAreaMeasure")) return Dimension::kArea;
  if (type.IsOrIsMadeOf("IfcVolumeMeasure")) return Dimension::kVolume;
  if (type.IsOrIsMadeOf("IfcPlaneAngleMeasure")) return Dimension::kAngle;
  return Dimension::kNone;
}

bool IsUnordered(const Aggregate& aggregate) {
  return aggregate.kind == Aggregate::Kind::kSet || aggregate.kind == Aggregate::Kind::kBag;
}

// A defined type may be the list.
Aggregate OutermostOf(const AttributeFacts& facts) {
  if (!facts.aggregates[0].IsNone()) return facts.aggregates[0];
  for (const TypeFacts* at = facts.type; at != nullptr; at = at->base) {
    if (!at->aggregate.IsNone()) return at->aggregate;
  }
  return {};
}

AttributeWord Make(const AttributeFacts& facts, Role role) {
  const std::string_view name = facts.name;
  AttributeWord attribute;
  attribute.facts = &facts;
  attribute.word = WordOfName(name);
  attribute.dimension = DimensionOf(*facts.type);
  attribute.isContent = name != "OwnerHistory" && facts.kind != ValueKind::kGuid;
  attribute.isPlacement = name == "ObjectPlacement";
  attribute.isPropertySets = name == "HasPropertySets";
  attribute.isRelated = role == Role::kRelation && name.starts_with("Related");
  attribute.isRelating = role == Role::kRelation && name.starts_with("Relating");
  attribute.isUnit = name == "Unit" || name == "UnitComponent";
  attribute.isParameter = facts.type->IsOrIsMadeOf("IfcParameterValue");
  attribute.isUnordered[0] = IsUnordered(OutermostOf(facts));
  attribute.isUnordered[1] = IsUnordered(facts.aggregates[1]);
  return attribute;
}

}  // namespace

bool ClassWord::Describes(const AttributeFacts& attribute) const {
  return std::find(describing.begin(), describing.end(), &attribute) != describing.end();
}

const ClassWord* ClassWords::Of(const IFC::IfcEntity& entity) {
  // One class stands for records of many names.
  if (entity.carries) return Find(entity);
  const std::type_info* const dynamicClass = &typeid(entity);
  Recent& recent = recent_[(reinterpret_cast<std::uintptr_t>(dynamicClass) >> 4) % kRecent];
  if (recent.dynamicClass != dynamicClass) recent = {dynamicClass, Find(entity)};
  return recent.word;
}

Dimension DimensionOfParameters(const IFC::IfcEntity& record) {
  constexpr int kMostCurves = 64;  // they may go in circles
  const IFC::IfcEntity* curve = &record;
  for (int i = 0; i < kMostCurves; ++i) {
    const IFC::IfcEntity* const basis = ReferenceOf(*curve, kBasisCurve);
    if (basis == nullptr) break;
    curve = basis;
  }
  const ClassFacts* const facts = FindFacts(*curve);
  return facts != nullptr && IsOrDerivesFrom(*facts, "IfcConic") ? Dimension::kAngle
                                                                 : Dimension::kNone;
}

bool ClassWords::HasMet(std::string_view className) const {
  return std::any_of(known_.begin(), known_.end(),
                     [&](const auto& known) { return known.first->name == className; });
}

const ClassWord* ClassWords::Find(const IFC::IfcEntity& entity) {
  const ClassFacts* const facts = FindFacts(entity);
  if (facts == nullptr) return nullptr;
  auto& known = known_[facts];
  if (known == nullptr) {
    auto made = std::make_unique<ClassWord>();
    made->facts = facts;
    made->word = WordOfName(facts->name);
    made->role = RoleOf(*facts);
    for (std::size_t i = 0; i < facts->AttributeCount(); ++i) {
      AttributeWord attribute = Make(facts->Attribute(i), made->role);
      // Few classes have two attributes of one name, their own and an inherited one.
      const auto hasItsWord = [&](const AttributeWord& earlier) {
        return earlier.word == attribute.word;
      };
      if (std::any_of(made->attributes.begin(), made->attributes.end(), hasItsWord)) {
        attribute.word = (attribute.word ^ kBasis) * kPrime;
      }
      made->attributes.push_back(attribute);
      made->hasUnit = made->hasUnit || attribute.isUnit;
      made->hasBasisCurve = made->hasBasisCurve || attribute.facts->name == kBasisCurve;
      made->hasPropertySets = made->hasPropertySets || attribute.isPropertySets;
    }
    const auto described = pointing_.DescribedBy(entity);
    made->describing.assign(described.begin(), described.end());
    known = std::move(made);
  }
  return known.get();
}

std::uint64_t WordOfName(std::string_view name) {
  std::uint64_t word = kBasis;
  for (const char c : name) word = (word ^ static_cast<unsigned char>(c)) * kPrime;
  return word;
}

std::uint64_t WordOfName(const char16_t* name) {
  std::uint64_t word = kBasis;
  for (; *name != 0; ++name) word = (word ^ *name) * kPrime;
  return word;
}

}  // namespace corvel::host::diff
