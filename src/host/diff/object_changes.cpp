#include "host/diff/object_changes.h"

#include <algorithm>
#include <set>
#include <utility>

#include "host/diff/movement.h"
#include "host/diff/property_text.h"
#include "host/diff/relation_words.h"
#include "host/diff/value_text.h"
#include "merge/federation/attribute_values.h"

namespace corvel::host::diff {

namespace {

using Entities = std::vector<const IFC::IfcEntity*>;

// "Pset_A.Fire.NominalValue" is what people call "Pset_A.Fire".
std::string WithoutMainValue(std::string path) {
  const std::size_t dot = path.rfind('.');
  if (dot != std::string::npos && IsMainValue(std::string_view(path).substr(dot + 1))) {
    path.resize(dot);
  }
  return path;
}

// Nor do they say where properties of properties are held.
std::string WithoutHolders(std::string path) {
  constexpr std::string_view kHolder = ".HasProperties[";
  for (std::size_t at = path.find(kHolder); at != std::string::npos; at = path.find(kHolder, at)) {
    const std::size_t name = at + kHolder.size();
    std::size_t end = path.find("].", name);
    if (end == std::string::npos) end = path.rfind(']');
    if (end == std::string::npos || end < name) break;
    path.replace(at, end + 1 - at, "." + path.substr(name, end - name));
  }
  return path;
}

bool IsQuantity(const IFC::IfcEntity& property) {
  static ClassQuestion question("IfcPhysicalQuantity");
  return question.IsTrueOf(property);
}

std::map<std::string, Entities> ByName(const Entities& entities) {
  std::map<std::string, Entities> named;
  for (const IFC::IfcEntity* const entity : entities) {
    const std::string name = NameOf(*entity);
    named[name.empty() ? ToUtf8(entity->getClassName()) : name].push_back(entity);
  }
  return named;
}

template <class Map>
std::set<std::string> KeysOf(const Map& one, const Map& other) {
  std::set<std::string> keys;
  for (const auto& entry : one) keys.insert(entry.first);
  for (const auto& entry : other) keys.insert(entry.first);
  return keys;
}

// Takes what both sides say alike out of each.
template <class AreSame, class DigestBefore, class DigestAfter>
void DropEqual(Entities& before, Entities& after, AreSame areSame, DigestBefore ofBefore,
               DigestAfter ofAfter) {
  if (Lockstep::SameInAnyOrder(before, after, areSame)) {
    before.clear();
    after.clear();
  }
  std::set<Digest> here;
  std::set<Digest> there;
  for (const IFC::IfcEntity* const one : before) here.insert(ofBefore(*one));
  for (const IFC::IfcEntity* const other : after) there.insert(ofAfter(*other));
  std::erase_if(before, [&](const auto* one) { return there.contains(ofBefore(*one)); });
  std::erase_if(after, [&](const auto* other) { return here.contains(ofAfter(*other)); });
}

bool LeadsToProperties(const IFC::IfcEntity& relation, ClassWords& words) {
  bool leads = false;
  for (const ConstAttribute attribute : AttributesOf(relation)) {
    ForEachPropertySet(attribute, words, [&](const IFC::IfcEntity&) { leads = true; });
  }
  return leads;
}

}  // namespace

ChangedObject ObjectChanges::Of(std::size_t before, std::size_t after) {
  const IFC::IfcEntity& one = *before_.Model().Objects()[before];
  const IFC::IfcEntity& other = *after_.Model().Objects()[after];
  object_ = {LabelOf(one), LabelOf(other), {}, 0};
  if (object_.before.className != object_.after.className) {
    object_.changes.push_back(
        {ChangeKind::kClass, "class", object_.before.className, object_.after.className, {}});
  }
  CompareOwn(one, other);
  CompareProperties(before, after);
  CompareRelations(before, after);
  return std::move(object_);
}

// With its own pieces in the order of people's interest: what it is, then where.
void ObjectChanges::CompareOwn(const IFC::IfcEntity& before, const IFC::IfcEntity& after) {
  const auto here = before_.PlaceOf(before);
  const auto there = after_.PlaceOf(after);
  walk_.CompareAttributes(before, after, "", [&](const AttributeWord& word) {
    const bool isPlaceToldApart = word.isPlacement && (here || there);
    return word.isContent && !word.isPropertySets && !isPlaceToldApart;
  });
  walk_.CompareDescriptions(before, after, "");
  TakeAs(ChangeKind::kAttribute);
  ComparePlaces(here, there);
  CompareGridPlaces(before, after);
}

bool ObjectChanges::SameWorldPlace(const std::optional<Transform>& before,
                                   const std::optional<Transform>& after) const {
  constexpr double kPartOfOrigin = 1e-12;
  if (!before || !after) return !before && !after;
  return SamePlace(
      *before, *after,
      {.origin = tolerance_.metres, .partOfOrigin = kPartOfOrigin, .axis = Tolerance::kAxis});
}

void ObjectChanges::ComparePlaces(const std::optional<Transform>& before,
                                  const std::optional<Transform>& after) {
  if (SameWorldPlace(before, after)) return;
  Change change;
  change.kind = ChangeKind::kPlace;
  change.path = "place";
  if (before) change.before = TextOfPoint(before->origin);
  if (after) change.after = TextOfPoint(after->origin);
  if (before && after) change.movement = MovementBetween(*before, *after);
  object_.changes.push_back(std::move(change));
}

bool ObjectChanges::StandOnGridsAtOnePlace(std::size_t before, std::size_t after) {
  const auto here = before_.PlacesOfGridsUnder(*before_.Model().Objects()[before]);
  const auto there = after_.PlacesOfGridsUnder(*after_.Model().Objects()[after]);
  return std::equal(
      here.begin(), here.end(), there.begin(), there.end(),
      [this](const auto& one, const auto& other) { return SameWorldPlace(one, other); });
}

// What stands on a grid moves with it. That it stands on another number of them is told by its
// placement.
void ObjectChanges::CompareGridPlaces(const IFC::IfcEntity& before, const IFC::IfcEntity& after) {
  const auto here = before_.PlacesOfGridsUnder(before);
  const auto there = after_.PlacesOfGridsUnder(after);
  for (std::size_t i = 0; i < std::min(here.size(), there.size()); ++i) {
    const std::size_t first = object_.changes.size();
    ComparePlaces(here[i], there[i]);
    if (first != object_.changes.size()) object_.changes.back().path = "place of its grid";
  }
}

void ObjectChanges::CompareProperties(std::size_t before, std::size_t after) {
  const Sets here = ByName(before_.PropertySetsOf(before));
  const Sets there = ByName(after_.PropertySetsOf(after));
  for (const std::string& name : KeysOf(here, there)) {
    const auto one = here.find(name);
    const auto other = there.find(name);
    CompareSets(name, one == here.end() ? Entities() : one->second,
                other == there.end() ? Entities() : other->second);
  }
}

void ObjectChanges::CompareSets(const std::string& name, Entities before, Entities after) {
  DropEqual(
      before, after,
      [&](const auto* one, const auto* other) { return lockstep_.SameValues(one, other); },
      [&](const auto& set) { return before_.Values().Of(&set); },
      [&](const auto& set) { return after_.Values().Of(&set); });
  for (std::size_t i = 0; i < std::max(before.size(), after.size()); ++i) {
    const IFC::IfcEntity* const one = i < before.size() ? before[i] : nullptr;
    const IFC::IfcEntity* const other = i < after.size() ? after[i] : nullptr;
    const bool isWhole = one == nullptr || other == nullptr;
    if (!isWhole && LabelOf(*one).className == LabelOf(*other).className) {
      walk_.CompareAttributes(*one, *other, name, [](const AttributeWord& word) {
        return word.isContent && !HoldsProperties(word.facts->name);
      });
      TakeAs(ChangeKind::kProperty);
    } else if (!isWhole || (PropertiesIn(one).empty() && PropertiesIn(other).empty())) {
      walk_.Compare(one, other, name);
      TakeAs(ChangeKind::kProperty);
      if (!isWhole) continue;
    }
    ComparePropertiesOf(name, one, other);
  }
}

void ObjectChanges::ComparePropertiesOf(const std::string& name, const IFC::IfcEntity* before,
                                        const IFC::IfcEntity* after) {
  const Sets here = ByName(PropertiesIn(before));
  const Sets there = ByName(PropertiesIn(after));
  for (const std::string& property : KeysOf(here, there)) {
    const auto one = here.find(property);
    const auto other = there.find(property);
    const std::size_t ones = one == here.end() ? 0 : one->second.size();
    const std::size_t others = other == there.end() ? 0 : other->second.size();
    const std::string path = std::string(name).append(".").append(property);
    for (std::size_t i = 0; i < std::max(ones, others); ++i) {
      const IFC::IfcEntity* const was = i < ones ? one->second[i] : nullptr;
      const IFC::IfcEntity* const is = i < others ? other->second[i] : nullptr;
      const IFC::IfcEntity* const either = was != nullptr ? was : is;
      if (either == nullptr) continue;
      const ChangeKind kind = IsQuantity(*either) ? ChangeKind::kQuantity : ChangeKind::kProperty;
      if (was != nullptr && is != nullptr) {
        walk_.Compare(was, is, path);
        TakeAs(kind);
        continue;
      }
      Change change{kind, path, {}, {}, {}};
      if (was != nullptr) change.before = TextOfProperty(before_.Model(), *was);
      if (is != nullptr) change.after = TextOfProperty(after_.Model(), *is);
      object_.changes.push_back(std::move(change));
    }
  }
}

void ObjectChanges::CompareRelations(std::size_t before, std::size_t after) {
  const auto here = before_.Model().RelationsOf(before);
  const auto there = after_.Model().RelationsOf(after);
  Entities one(here.begin(), here.end());
  Entities other(there.begin(), there.end());
  DropEqual(
      one, other, [&](const auto* of, const auto* as) { return lockstep_.SameRelation(*of, *as); },
      [&](const auto& relation) { return before_.Values().OfFact(relation); },
      [&](const auto& relation) { return after_.Values().OfFact(relation); });
  // What sets of properties say has been told; here is how they are related.
  const auto keyOf = [](const ComparedModel& model, const IFC::IfcEntity& relation) {
    std::string key = ToUtf8(relation.getClassName());
    for (const ConstAttribute attribute : AttributesOf(relation)) {
      ForEachPropertySet(attribute, model.Words(),
                         [&](const IFC::IfcEntity& set) { key += " " + NameOf(set); });
    }
    return key;
  };
  std::map<std::string, std::pair<Entities, Entities>> byKey;
  for (const auto* const relation : one)
    byKey[keyOf(before_.Model(), *relation)].first.push_back(relation);
  for (const auto* const relation : other)
    byKey[keyOf(after_.Model(), *relation)].second.push_back(relation);
  for (auto& [key, sides] : byKey)
    CompareRelations(std::move(sides.first), std::move(sides.second));
}

// Of one class. Those that lead to the same are compared first, then the others in turn.
void ObjectChanges::CompareRelations(Entities before, Entities after) {
  const auto targetOf = [](ObjectFacts& facts, const IFC::IfcEntity& relation) {
    const AttributeWord* const holding = facts.Model().HoldingAttribute(relation);
    for (const AttributeWord& word : facts.Model().Words().Of(relation)->attributes) {
      if (&word == holding || word.facts->depth != 0 || !Refers(word.facts->kind)) continue;
      if (!word.isRelated && !word.isRelating) continue;
      return facts.Values().Of(ReferenceOf(relation, word.facts->name));
    }
    return Digest{};
  };
  std::erase_if(before, [&](const IFC::IfcEntity* one) {
    const Digest target = targetOf(before_, *one);
    const auto other = std::find_if(after.begin(), after.end(), [&](const auto* candidate) {
      return targetOf(after_, *candidate) == target;
    });
    if (other == after.end()) return false;
    ComparePair(*one, **other);
    after.erase(other);
    return true;
  });
  const std::size_t pairs = std::min(before.size(), after.size());
  for (std::size_t i = 0; i < pairs; ++i) ComparePair(*before[i], *after[i]);
  for (std::size_t i = pairs; i < before.size(); ++i) TellRelation(*before[i], true);
  for (std::size_t i = pairs; i < after.size(); ++i) TellRelation(*after[i], false);
}

void ObjectChanges::ComparePair(const IFC::IfcEntity& before, const IFC::IfcEntity& after) {
  const AttributeWord* const holding = before_.Model().HoldingAttribute(before);
  const AttributeWord* const holdingAfter = after_.Model().HoldingAttribute(after);
  ClassWords& words = before_.Model().Words();
  const RelationWord relation = WordOfRelation(*words.Of(before)->facts);
  const bool leads = LeadsToProperties(before, words);
  walk_.CompareAttributes(before, after, "", [&](const AttributeWord& word) {
    const bool isTold = leads && (word.isRelated || word.isRelating);
    return word.isContent && &word != holding && &word != holdingAfter && !isTold;
  });
  const std::size_t first = object_.changes.size();
  TakeAs(relation.kind);
  for (std::size_t i = first; i < object_.changes.size(); ++i) {
    std::string& path = object_.changes[i].path;
    // The other end of the relation is what it is called after.
    const std::size_t end = std::min(path.find_first_of(".["), path.size());
    const bool isEnd = path.starts_with("Relating") || path.starts_with("Related");
    path.replace(0, isEnd ? end : 0, isEnd ? relation.text : relation.text + ".");
  }
}

void ObjectChanges::TellRelation(const IFC::IfcEntity& relation, bool isBefore) {
  const ComparedModel& model = isBefore ? before_.Model() : after_.Model();
  if (LeadsToProperties(relation, model.Words())) return;
  const AttributeWord* const holding = model.HoldingAttribute(relation);
  const ValueText text(model, false);
  std::string told = text.Of(&relation);
  for (const AttributeWord& word : model.Words().Of(relation)->attributes) {
    if (&word == holding || (!word.isRelated && !word.isRelating)) continue;
    const ConstAttribute held(relation, *word.facts);
    if (Refers(word.facts->kind) && held.HasValue()) told = text.Of(held, word);
  }
  const RelationWord word = WordOfRelation(*model.Words().Of(relation)->facts);
  Change change{word.kind, word.text, {}, {}, {}};
  (isBefore ? change.before : change.after) = told;
  object_.changes.push_back(std::move(change));
}

void ObjectChanges::TakeAs(ChangeKind kind) {
  for (Difference& difference : walk_.Take(object_.omitted)) {
    std::string path = WithoutMainValue(std::move(difference.path));
    if (kind == ChangeKind::kProperty) path = WithoutHolders(std::move(path));
    object_.changes.push_back(
        {kind, std::move(path), std::move(difference.before), std::move(difference.after), {}});
  }
}

}  // namespace corvel::host::diff
