#include "merge/federation/equality/object_content.h"

#include <array>
#include <utility>

#include "merge/federation/equality/attribute_digest.h"
#include "schema/attributes.h"

namespace corvel {

namespace {

constexpr std::string_view kPlacement = "ObjectPlacement";
// A thousandth of a millimetre, and what the doubles of far places cannot tell.
constexpr double kMetres = 1e-6;
constexpr double kPartOfOrigin = 1e-12;
constexpr double kOfAxis = 1e-8;
// Kinds of links by attributes; those by relations are below.
constexpr std::uint32_t kByGrid = 1000;
constexpr std::uint32_t kByAttribute = 1001;

bool IsContent(std::string_view attribute) {
  return attribute != "GlobalId" && attribute != "OwnerHistory";
}

}  // namespace

Digest ObjectContents::Of(IFC::IfcEntity& object) {
  const auto [known, isNew] = known_.try_emplace(&object);
  if (!isNew) return known->second;
  DigestMaker maker;
  maker.Add(FindFacts(object));
  AttributeDigest attributes(maker, [this](IFC::IfcEntity* child) {
    const bool isLink = child != nullptr && StandsForItself(*child);
    return isLink ? Digest{1, 1} : values_.Of(child);
  });
  for (const ConstAttribute attribute : AttributesOf(std::as_const(object))) {
    if (!IsContent(attribute.Name())) continue;
    const IFC::IfcEntity* const placement =
        attribute.Name() == kPlacement ? ReferenceOf(object, kPlacement) : nullptr;
    if (placement != nullptr && isLocalPlacement_.IsTrueOf(*placement)) continue;
    attributes.Add(attribute);
  }
  return known_[&object] = maker.Made();
}

std::vector<Belongings::Link> ObjectContents::ReferredBy(IFC::IfcEntity& object) {
  std::vector<Belongings::Link> links;
  std::uint32_t kind = kByAttribute;
  for (const Attribute attribute : AttributesOf(object)) {
    ++kind;
    if (!IsContent(attribute.Name())) continue;
    attribute.ForEach<IFC::IfcEntity*>([&](IFC::IfcEntity* child) {
      if (child != nullptr && StandsForItself(*child)) links.push_back({kind, child});
    });
  }
  for (IFC::IfcEntity* const grid : grids_.Under(ReferenceOf(object, kPlacement))) {
    links.push_back({kByGrid, grid});
  }
  return links;
}

// Those that stand nowhere were compared by value, and the grids that they stand on are links.
bool ObjectContents::SamePlaces(IFC::IfcEntity& one, IFC::IfcEntity& other, double metresPerUnit) {
  IFC::IfcEntity* const here = ReferenceOf(one, kPlacement);
  IFC::IfcEntity* const there = ReferenceOf(other, kPlacement);
  const bool isLocal = here != nullptr && isLocalPlacement_.IsTrueOf(*here);
  if (isLocal != (there != nullptr && isLocalPlacement_.IsTrueOf(*there))) return false;
  if (!isLocal) return true;
  const auto place = places_.Of(*here);
  const auto otherPlace = places_.Of(*there);
  if (!place || !otherPlace) return values_.Of(here) == values_.Of(there);
  return SamePlace(
      *place, *otherPlace,
      {.origin = kMetres / metresPerUnit, .partOfOrigin = kPartOfOrigin, .axis = kOfAxis});
}

}  // namespace corvel
