#include "host/diff/object_facts.h"

#include <algorithm>
#include <functional>
#include <string>
#include <string_view>

#include "merge/federation/attribute_values.h"

namespace corvel::host::diff {

namespace {

// By which an object is related to nothing that has an identity.
bool TellsOfOneObject(const ClassWord& relation) {
  for (const ClassFacts* at = relation.facts; at != nullptr; at = at->supertype) {
    const std::string_view name = at->name;
    if (name == "IfcRelDefinesByProperties" || name == "IfcRelAssociates") return true;
  }
  return false;
}

Digest DigestOfText(ModelText text) {
  DigestMaker maker;
  maker.Add(text);
  return maker.Made();
}

// Equal for texts that say the same, whichever way they are held.
std::uint64_t KeyOf(ModelText text) {
  if (text.IsPlain()) return std::hash<std::string_view>()(text.Plain());
  const auto isByte = [](char16_t unit) { return unit < 0x100; };
  const WideView units = text.Units();
  if (!std::all_of(units.begin(), units.end(), isByte)) return std::hash<WideView>()(units);
  std::string plain;
  for (const char16_t unit : units) plain.push_back(static_cast<char>(unit));
  return std::hash<std::string_view>()(plain);
}

// Null without any.
const ModelText* NameOfObject(const IFC::IfcEntity& object) {
  const auto attribute = AttributesOf(object).Find("Name");
  return attribute ? attribute->As<ModelText>() : nullptr;
}

}  // namespace

std::optional<Transform> ObjectFacts::PlaceOf(const IFC::IfcEntity& object) {
  if (FindFacts(object) == nullptr) return std::nullopt;
  IFC::IfcEntity* const placement = ReferenceOf(object, "ObjectPlacement");
  if (placement == nullptr) return std::nullopt;
  std::optional<Transform> place = places_.Of(*placement);
  if (place) place->origin = Times(place->origin, model_.Scales().length);
  return place;
}

std::vector<std::optional<Transform>> ObjectFacts::PlacesOfGridsUnder(
    const IFC::IfcEntity& object) {
  if (!mayStandOnGrids_ || FindFacts(object) == nullptr) return {};
  if (!knowsGrids_) {
    for (IFC::IfcEntity* const one : model_.Objects()) grids_.Gather(*one);
    knowsGrids_ = true;
  }
  std::vector<IFC::IfcEntity*> grids = grids_.Under(ReferenceOf(object, "ObjectPlacement"));
  std::vector<std::optional<Transform>> places;
  for (auto grid = grids.begin(); grid != grids.end(); ++grid) {
    if (*grid == nullptr || std::find(grids.begin(), grid, *grid) != grid) continue;
    places.push_back(PlaceOf(**grid));
  }
  return places;
}

std::optional<Digest> ObjectFacts::DigestOfPlace(const IFC::IfcEntity& object) {
  const auto place = PlaceOf(object);
  if (!place) return std::nullopt;
  DigestMaker maker;
  for (const double length : place->origin) {
    maker.Add(tolerance_.WordOf(length, Dimension::kLength));
  }
  for (const Triple* const axis : {&place->x, &place->z}) {
    for (const double ratio : *axis) maker.Add(Tolerance::InCells(ratio, Tolerance::kAxis));
  }
  return maker.Made();
}

// What several relations say alike counts once, and in any order.
Digest ObjectFacts::Together(const Digest& first) {
  std::sort(facts_.begin(), facts_.end());
  facts_.erase(std::unique(facts_.begin(), facts_.end()), facts_.end());
  DigestMaker maker;
  maker.Add(first);
  for (const Digest& fact : facts_) maker.Add(fact);
  facts_.clear();
  return maker.Made();
}

void ObjectFacts::AddPropertySetsOfType(const IFC::IfcEntity& object) {
  const ClassWord& word = *model_.Words().Of(object);
  for (const AttributeWord& attribute : word.attributes) {
    if (!attribute.isPropertySets) continue;
    ConstAttribute(object, *attribute.facts)
        .ForEach<IFC::IfcEntity*>(
            [&](IFC::IfcEntity* const set) { facts_.push_back(values_.Of(set)); });
  }
}

Digest ObjectFacts::ContentOf(std::size_t index) {
  const IFC::IfcEntity& object = *model_.Objects()[index];
  const auto place = DigestOfPlace(object);
  const Digest content = values_.OfContent(object, place ? &*place : nullptr);
  AddPropertySetsOfType(object);
  for (const IFC::IfcEntity* const relation : model_.RelationsOf(index)) {
    if (TellsOfOneObject(*model_.Words().Of(*relation)))
      facts_.push_back(values_.OfFact(*relation));
  }
  return Together(content);
}

ObjectFacts::Look ObjectFacts::LookOf(std::size_t index) {
  const IFC::IfcEntity& object = *model_.Objects()[index];
  const ClassWord& word = model_.WordOf(index);
  const auto place = DigestOfPlace(object);
  const ModelText* const name = NameOfObject(object);
  DigestMaker maker;
  maker.Add(word.word);
  maker.Add(place.value_or(Digest{}));
  maker.Add(name == nullptr ? Digest{} : DigestOfText(*name));
  return {maker.Made(), word.role == Role::kObject && (place || name != nullptr)};
}

std::uint64_t ObjectFacts::NameKeyOf(std::size_t index) const {
  const ModelText* const name = NameOfObject(*model_.Objects()[index]);
  const std::uint64_t word = model_.WordOf(index).word;
  if (name == nullptr || name->IsNull()) return word;
  return word ^ KeyOf(*name);
}

Digest ObjectFacts::WholeOf(std::size_t index) {
  const IFC::IfcEntity& object = *model_.Objects()[index];
  const auto place = DigestOfPlace(object);
  const Digest content = values_.OfContent(object, place ? &*place : nullptr);
  AddPropertySetsOfType(object);
  for (const IFC::IfcEntity* const relation : model_.RelationsOf(index)) {
    facts_.push_back(values_.OfFact(*relation));
  }
  return Together(content);
}

std::vector<const IFC::IfcEntity*> ObjectFacts::PropertySetsOf(std::size_t index) const {
  std::vector<const IFC::IfcEntity*> sets;
  const auto add = [&](const IFC::IfcEntity& set) { sets.push_back(&set); };
  const IFC::IfcEntity& object = *model_.Objects()[index];
  ClassWords& words = model_.Words();
  for (const AttributeWord& attribute : words.Of(object)->attributes) {
    if (!attribute.isPropertySets) continue;
    ForEachPropertySet(ConstAttribute(object, *attribute.facts), words, add);
  }
  for (const IFC::IfcEntity* const relation : model_.RelationsOf(index)) {
    for (const ConstAttribute attribute : AttributesOf(*relation)) {
      ForEachPropertySet(attribute, words, add);
    }
  }
  std::sort(sets.begin(), sets.end());
  sets.erase(std::unique(sets.begin(), sets.end()), sets.end());
  std::sort(sets.begin(), sets.end(), [](const IFC::IfcEntity* one, const IFC::IfcEntity* other) {
    return one->marker < other->marker;
  });
  return sets;
}

}  // namespace corvel::host::diff
