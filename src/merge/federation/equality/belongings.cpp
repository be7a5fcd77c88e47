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

int KindOf(const ClassFacts* facts) {
  for (const ClassFacts* at = facts; at != nullptr; at = at->supertype) {
    for (std::size_t i = 0; i < std::size(kRelations); ++i) {
      if (kRelations[i].className == at->name) return static_cast<int>(i);
    }
  }
  return -1;
}

}  // namespace

void Belongings::Gather(IFC::IfcEntity& entity) {
  const ClassFacts* const facts = FindFacts(entity);
  if (facts == nullptr) return;
  const auto [known, isNew] = kinds_.try_emplace(facts);
  if (isNew) known->second = KindOf(facts);
  const int index = known->second;
  if (index < 0) return;
  const RelationOfParts& relation = kRelations[index];
  IFC::IfcEntity* const host = ReferenceOf(entity, relation.host);
  const auto parts = AttributesOf(entity).Find(relation.parts);
  if (host == nullptr || !parts) return;
  const auto kind = static_cast<std::uint32_t>(index) * 2;
  parts->ForEach<IFC::IfcEntity*>([&](IFC::IfcEntity* part) {
    if (part == nullptr) return;
    if (index == kType) {
      links_[part].push_back({kind, host});
      return;
    }
    links_[host].push_back({kind, part});
    const bool isPlace = isSpatial_.IsTrueOf(*host) || isSpatialElement_.IsTrueOf(*host) ||
                         isProject_.IsTrueOf(*host);
    if (!isPlace) links_[part].push_back({kind + 1, host});
  });
}

std::span<const Belongings::Link> Belongings::Of(const IFC::IfcEntity& entity) const {
  const auto found = links_.find(&entity);
  if (found == links_.end()) return {};
  return found->second;
}

}  // namespace corvel
