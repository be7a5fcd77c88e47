#include "merge/federation/equality/belongings.h"

#include <iterator>

#include "schema/attributes.h"

namespace corvel {

namespace {

struct RelationOfParts {
  std::string_view className;
  std::string_view host;   // an attribute with one reference
  std::string_view parts;  // one, or a list
};

constexpr RelationOfParts kRelations[] = {
    {"IfcRelVoidsElement", "RelatingBuildingElement", "RelatedOpeningElement"},
    {"IfcRelProjectsElement", "RelatingElement", "RelatedFeatureElement"},
    {"IfcRelAdheresToElement", "RelatingElement", "RelatedSurfaceFeatures"},
    {"IfcRelConnectsPortToElement", "RelatedElement", "RelatingPort"},
    {"IfcRelAggregates", "RelatingObject", "RelatedObjects"},
    {"IfcRelNests", "RelatingObject", "RelatedObjects"},
    {"IfcRelDefinesByType", "RelatingType", "RelatedObjects"},
};
// The host of which does not count what it is the type of.
constexpr int kType = std::size(kRelations) - 1;

// Attributes of which an object may be in one.
struct OwningAttribute {
  std::string_view className;
  std::string_view attribute;
  SchemaNamespace last;  // the newest release in which that is so
};

constexpr OwningAttribute kOwning[] = {
    {"IfcTypeObject", "HasPropertySets", SchemaNamespace::IFC2X3},
    {"IfcStructuralAnalysisModel", "HasResults", SchemaNamespace::IFC4X4},
    {"IfcStructuralResultGroup", "ResultForLoadGroup", SchemaNamespace::IFC4X4},
};
constexpr std::uint32_t kFirstOfOwning = 2 * std::size(kRelations);

}  // namespace

bool Belongings::MayTie(const ClassFacts* facts) const {
  if (facts == nullptr) return false;
  const Ties ties = TiesOf(*facts);
  return ties.relation >= 0 || !ties.owning.empty();
}

void Belongings::Gather(IFC::IfcEntity& entity) {
  const ClassFacts* const facts = FindFacts(entity);
  if (facts == nullptr) return;
  const auto [known, isNew] = ties_.try_emplace(facts);
  if (isNew) known->second = TiesOf(*facts);
  std::uint32_t kind = kFirstOfOwning;
  for (const AttributeFacts* const owning : known->second.owning) {
    Attribute(entity, *owning).ForEach<IFC::IfcEntity*>([&](IFC::IfcEntity* owned) {
      if (owned != nullptr) Tie(*owned, kind, entity);
    });
    ++kind;
  }
  if (known->second.relation >= 0) GatherParts(entity, known->second.relation);
}

Belongings::Ties Belongings::TiesOf(const ClassFacts& facts) const {
  Ties ties;
  for (const ClassFacts* at = &facts; at != nullptr; at = at->supertype) {
    for (std::size_t i = 0; i < std::size(kRelations); ++i) {
      if (kRelations[i].className == at->name) ties.relation = static_cast<int>(i);
    }
    for (const OwningAttribute& owning : kOwning) {
      if (owning.className != at->name || !release_ || *release_ > owning.last) continue;
      const AttributeFacts* const found = facts.FindAttribute(owning.attribute);
      if (found != nullptr) ties.owning.push_back(found);
    }
  }
  return ties;
}

void Belongings::GatherParts(const IFC::IfcEntity& entity, int relation) {
  const RelationOfParts& ends = kRelations[relation];
  IFC::IfcEntity* const host = ReferenceOf(entity, ends.host);
  const auto parts = AttributesOf(entity).Find(ends.parts);
  if (host == nullptr || !parts) return;
  const auto kind = static_cast<std::uint32_t>(relation) * 2;
  const bool isPlace =
      isSpatial_.IsTrueOf(*host) || isSpatialElement_.IsTrueOf(*host) || isProject_.IsTrueOf(*host);
  parts->ForEach<IFC::IfcEntity*>([&](IFC::IfcEntity* part) {
    if (part == nullptr) return;
    if (relation == kType) {
      Tie(*part, kind, *host);
      return;
    }
    Tie(*host, kind, *part);
    if (!isPlace) Tie(*part, kind + 1, *host);
  });
}

std::span<const Belongings::Link> Belongings::Of(const IFC::IfcEntity& entity) const {
  const auto found = links_.find(&entity);
  if (found == links_.end()) return {};
  return found->second;
}

}  // namespace corvel
